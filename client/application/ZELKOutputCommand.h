#pragma once

#include <QString>

#include <functional>

class ZELKApplicationWiring;
class ZELKOutputWork;

/// What commands have in common that make a file: progress is shown to a terminal where it takes longer than
/// a second, and Ctrl+C cancels.
class ZELKOutputCommand
{
public:
    /// What went wrong, in a sentence.
    using Complaint = std::function<void(const QString &)>;

protected:
    /// `wiring` must outlive the object.
    ZELKOutputCommand(ZELKApplicationWiring &wiring, const Complaint &complain);

    /// Not the file that the events are kept in, which is complained of.
    bool mayWriteTo(const QString &path) const;
    /// False when the file is not there, which has been complained of. `path` is what it is told of as.
    bool carryOut(ZELKOutputWork &work, const QString &path) const;

    ZELKApplicationWiring &wiring() const { return m_wiring; }
    void complain(const QString &words) const { m_complain(words); }

private:
    ZELKApplicationWiring &m_wiring;
    Complaint m_complain;
};

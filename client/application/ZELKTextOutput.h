#pragma once

#include <QByteArray>
#include <QString>

#include <string_view>

/// Text on its way to a file descriptor, through a buffer, as UTF-8. Once a reader has gone, or writing has
/// failed, what is written is dropped.
class ZELKTextOutput
{
public:
    enum class State {
        Good,
        Closed, ///< nobody reads any more, which is no failure
        Failed, ///< error() says why
    };

    /// `descriptor` is not owned. SIGPIPE must be ignored.
    explicit ZELKTextOutput(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    /// Flushes.
    ~ZELKTextOutput();
    ZELKTextOutput(const ZELKTextOutput &) = delete;
    ZELKTextOutput &operator=(const ZELKTextOutput &) = delete;

    void write(std::string_view utf8);
    void write(const QString &text) { write(std::string_view(text.toUtf8())); }
    State flush();
    State state() const { return m_state; }
    QString error() const { return m_error; }

    /// Characters that would break a line or a terminal (controls, line separators, changes of direction) as
    /// escapes.
    static QString safe(const QString &text);

private:
    int m_descriptor;
    QByteArray m_buffer;
    State m_state = State::Good;
    QString m_error;
};

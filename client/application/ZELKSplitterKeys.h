#pragma once

#include <QObject>

class QSplitter;
class QSplitterHandle;

/// Lets a vertical splitter of two parts be moved without a mouse: Tab reaches its handle, Up and Down move
/// it by a line. Assistive programs know it by `name`. The splitter owns the object.
class ZELKSplitterKeys : public QObject
{
    Q_OBJECT

public:
    ZELKSplitterKeys(QSplitter &splitter, const QString &name);

    QSplitterHandle *handle() const { return m_handle; }
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool move(int key);

    QSplitter &m_splitter;
    QSplitterHandle *m_handle;
};

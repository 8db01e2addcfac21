#pragma once

#include "tools/Tool.h"

#include <QList>
#include <QObject>

/// All tools of the window, one of which is in the person's hand.
class ToolSet : public QObject
{
    Q_OBJECT

public:
    /// The document is borrowed.
    explicit ToolSet(Document &document, QObject *parent = nullptr);

    const QList<Tool *> &tools() const { return m_tools; }
    Tool *current() const { return m_current; } ///< never null
    /// Gives up what the last one has not finished.
    void setCurrent(Tool *tool);

Q_SIGNALS:
    void currentChanged(Tool *tool);

private:
    template <typename T>
    void add(Document &document)
    {
        auto *const tool = new T(document, this);
        m_tools.append(tool);
        connect(tool, &Tool::wanted, this, [this, tool] { setCurrent(tool); });
    }

    QList<Tool *> m_tools; // children
    Tool *m_current = nullptr;
};

#pragma once

#include <QObject>

class Document;
class QAction;
class ToolSet;

/// One pair of actions that undo and redo at every depth: within the current tool's unfinished
/// gesture first, then step by step in the document.
class UndoActions : public QObject
{
    Q_OBJECT

public:
    /// Both are borrowed.
    UndoActions(Document &document, ToolSet &tools, QObject *parent = nullptr);

    QAction *undoAction() const { return m_undo; }
    QAction *redoAction() const { return m_redo; }

private:
    void undo();
    void redo();
    void update();

    Document &m_document;
    ToolSet &m_tools;
    QAction *const m_undo; // children
    QAction *const m_redo;
};

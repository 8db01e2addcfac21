#pragma once

#include "canvas/ViewMode.h"
#include "document/Document.h"
#include "files/PictureLoader.h"
#include "tools/ToolSet.h"
#include "widgets/VectorIcon.h"
#include "window/ExportController.h"
#include "window/SessionController.h"
#include "window/UndoActions.h"

#include <QMainWindow>

class Canvas;
class QAction;
class QActionGroup;
class QMenu;
class QMimeData;
class QStackedWidget;
class ShortcutMap;
class StartPage;
class StatusBar;

/**
 * The window: menus, tool bars, the canvas and what surrounds it.
 *
 * Threads  the GUI thread.
 */
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    Document &document() { return m_document; }
    ToolSet &tools() { return m_tools; }
    Canvas &canvas() { return *m_canvas; }
    /// What a crash has left is offered first; then opens the file, unless there is none or it
    /// gave way to that.
    void begin(const QString &fileName);
    /// Loading answers with a picture or a sentence, later.
    void openFile(const QString &fileName);
    SessionController &sessions() { return m_sessions; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QAction *addTo(QWidget *menu, const QString &id, const QString &text,
                   const QKeySequence &shortcut);
    void addCutAction(QMenu *menu, QAction *action);
    void setIcon(QAction *action, VectorIcon::Shape shape);
    void createFileMenu();
    void createEditMenu();
    void createToolMenu();
    void createCutMenu();
    void createViewMenu();
    void createViewModes(QMenu *menu);
    void createBackgroundColors(QMenu *menu);
    void fillBackgroundColors(QMenu *colors);
    void createDocks(QMenu *menu);
    void addDock(QMenu *menu, const QString &id, const QString &title, Qt::Key key,
                 QWidget *content); ///< which it takes
    void createHelpMenu();
    void createToolBars();
    QWidget *createViewModeButton();
    void connectDocument();
    void connectExports();
    void connectSessions();
    void connectPreferences();
    void showWorkWidgets();
    void rememberWindow() const;
    void moveOntoAScreen();

    void chooseFile();
    void paste();
    bool openMimeData(const QMimeData *source);
    void openImage(const QImage &image);
    void showPicture(const OpenedPicture &picture);
    void showTool(Tool *tool);
    void cancel();
    void showPreferences();
    void savePreferences();
    void showHelp();
    void complain(const QString &sentence);
    void updateActions();
    QString whatIsUnderWay() const;
    void returnKeysFrom(const QWidget &options);
    void updateTitle();

    Document m_document;
    PictureLoader m_loader;
    ToolSet m_tools;
    UndoActions m_undoActions;
    ExportController m_exports;
    SessionController m_sessions;
    Canvas *m_canvas; // the widgets are children
    StartPage *m_startPage;
    QStackedWidget *m_pages;
    StatusBar *m_statusBar;
    QActionGroup *m_toolActions;
    QActionGroup *m_viewModes;
    ShortcutMap *m_shortcuts = nullptr;
    QList<QWidget *> m_workWidgets;    // that make no sense on the start page
    QList<QAction *> m_pictureActions; // that need a picture
    QList<QAction *> m_cutActions;     // that need a cut
    QAction *m_cancelAction = nullptr;
    QAction *m_toolOptions = nullptr; // of the current tool, in the tool bar
    QToolBar *m_optionsBar = nullptr;
};

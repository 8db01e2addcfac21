#include "window/MainWindow.h"

#include "canvas/Canvas.h"
#include "settings/RyImageCutterSettings.h"
#include "widgets/ColorIcon.h"
#include "window/EdgePanel.h"
#include "window/NamedAction.h"
#include "window/RecentFilesMenu.h"

#include <QAction>
#include <QActionGroup>
#include <QDockWidget>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>
#include <QUndoView>

#include <array>

namespace {

constexpr QSize toolIconSize(26, 26);
constexpr QSize barIconSize(20, 20);
constexpr int dockWidth = 210;

} // namespace

/// The action is the window's as well, so that its shortcut works wherever the menu is.
QAction *MainWindow::addTo(QWidget *menu, const QString &id, const QString &text,
                           const QKeySequence &shortcut)
{
    QAction *const action = NamedAction::create(this, id, text, shortcut);
    menu->addAction(action);
    addAction(action);
    return action;
}

void MainWindow::addCutAction(QMenu *menu, QAction *action)
{
    menu->addAction(action);
    addAction(action);
    m_cutActions.append(action);
}

void MainWindow::setIcon(QAction *action, VectorIcon::Shape shape)
{
    action->setIcon(VectorIcon::make(shape));
}

void MainWindow::createFileMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&File"));
    menu->setObjectName(QStringLiteral("fileMenu"));
    QAction *const open = addTo(menu, QStringLiteral("open"), tr("&Open…"), QKeySequence::Open);
    setIcon(open, VectorIcon::Shape::Open);
    connect(open, &QAction::triggered, this, &MainWindow::chooseFile);
    auto *const recent = new RecentFilesMenu(menu);
    menu->addMenu(recent);
    connect(recent, &RecentFilesMenu::chosen, this, &MainWindow::openFile);
    menu->addSeparator();
    for (QAction *const action : {m_sessions.saveAction(), m_sessions.saveAsAction()}) {
        setIcon(action, VectorIcon::Shape::Save);
        addCutAction(menu, action);
    }
    menu->addSeparator();
    for (QAction *const action : m_exports.exportActions())
        addCutAction(menu, action);
    menu->addSeparator();
    QAction *const quit =
            addTo(menu, QStringLiteral("quit"), tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(quit, &QAction::triggered, this, &QWidget::close);
}

void MainWindow::createEditMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&Edit"));
    menu->setObjectName(QStringLiteral("editMenu"));
    for (QAction *const action : {m_undoActions.undoAction(), m_undoActions.redoAction()}) {
        menu->addAction(action);
        addAction(action);
    }
    m_cancelAction = addTo(menu, QStringLiteral("cancel"), tr("&Cancel"), Qt::Key_Escape);
    connect(m_cancelAction, &QAction::triggered, this, &MainWindow::cancel);
    menu->addSeparator();
    addCutAction(menu, m_exports.copyAction());
    QAction *const pasting =
            addTo(menu, QStringLiteral("paste"), tr("&Paste Picture"), QKeySequence::Paste);
    setIcon(pasting, VectorIcon::Shape::Paste);
    connect(pasting, &QAction::triggered, this, &MainWindow::paste);
    menu->addSeparator();
    QAction *const preferences = addTo(menu, QStringLiteral("preferences"), tr("P&references…"),
                                       QKeySequence(Qt::CTRL | Qt::Key_Comma));
    connect(preferences, &QAction::triggered, this, &MainWindow::showPreferences);
}

/// How lassos are cut, and what happens to a whole cut.
void MainWindow::createCutMenu()
{
    using CutMethod = RyImageSegmentation::CutMethod;
    QMenu *const menu = menuBar()->addMenu(tr("&Cut"));
    menu->setObjectName(QStringLiteral("cutMenu"));
    auto *const methods = new QActionGroup(this);
    const auto addMethod = [&](const QString &id, const QString &text, Qt::Key key,
                               CutMethod method) {
        QAction *const action = addTo(menu, id, text, Qt::CTRL | Qt::SHIFT | key);
        action->setCheckable(true);
        action->setChecked(method == m_document.cutMethod());
        methods->addAction(action);
        connect(action, &QAction::triggered, &m_document,
                [this, method] { m_document.setCutMethod(method); });
    };
    addMethod(QStringLiteral("methodGraphCut"), tr("By &Graph Cuts"), Qt::Key_G,
              CutMethod::GraphCut);
    addMethod(QStringLiteral("methodClassic"), tr("By Co&lours of Regions"), Qt::Key_L,
              CutMethod::Classic);
    menu->addSeparator();
    QAction *const recut = addTo(menu, QStringLiteral("recut"), tr("Cut &Anew"),
                                 QKeySequence(Qt::CTRL | Qt::Key_R));
    connect(recut, &QAction::triggered, &m_document, &Document::recut);
    m_cutActions.append(recut);
    QAction *const invert = addTo(menu, QStringLiteral("invert"), tr("&Invert Cut"),
                                  QKeySequence(Qt::CTRL | Qt::Key_I));
    setIcon(invert, VectorIcon::Shape::Invert);
    connect(invert, &QAction::triggered, &m_document, &Document::invert);
    m_cutActions.append(invert);
}

void MainWindow::createToolMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&Tools"));
    menu->setObjectName(QStringLiteral("toolMenu"));
    for (Tool *const tool : m_tools.tools()) {
        const ToolDescription description = tool->description();
        QAction *const action = addTo(menu, description.id, description.name, description.shortcut);
        setIcon(action, description.icon);
        const auto explain = [action, description] {
            action->setToolTip(QStringLiteral("<b>%1</b> (%2)<br>%3")
                                       .arg(description.name,
                                            action->shortcut().toString(QKeySequence::NativeText),
                                            description.hint.toHtmlEscaped()));
        };
        explain();
        connect(action, &QAction::changed, this, explain); // its key may be another one
        action->setCheckable(true);
        m_toolActions->addAction(action);
        m_pictureActions.append(action);
        connect(action, &QAction::triggered, this, [this, tool] { m_tools.setCurrent(tool); });
    }
}

void MainWindow::createViewMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&View"));
    menu->setObjectName(QStringLiteral("viewMenu"));
    const auto add = [this, menu](const char *id, const QString &text, const QKeySequence &shortcut,
                                  VectorIcon::Shape shape, auto slot) {
        QAction *const action = addTo(menu, QString::fromLatin1(id), text, shortcut);
        setIcon(action, shape);
        m_pictureActions.append(action);
        connect(action, &QAction::triggered, m_canvas, slot);
        return action;
    };
    using VectorIcon::Shape;
    add("zoomIn", tr("Zoom &In"), QKeySequence::ZoomIn, Shape::ZoomIn, &Canvas::zoomIn)
            ->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Plus),
                            QKeySequence(Qt::CTRL | Qt::Key_Equal)});
    add("zoomOut", tr("Zoom &Out"), Qt::CTRL | Qt::Key_Minus, Shape::ZoomOut, &Canvas::zoomOut);
    add("zoomFit", tr("&Fit"), Qt::CTRL | Qt::Key_0, Shape::ZoomFit, &Canvas::zoomToFit);
    add("zoomOriginal", tr("&Original Size"), Qt::CTRL | Qt::Key_1, Shape::ZoomOriginal,
        &Canvas::zoomToOriginal);
    menu->addSeparator();
    createViewModes(menu);
    createBackgroundColors(menu);
    menu->addSeparator();
    add("contours", tr("&Regions"), Qt::Key_R, Shape::Contours, &Canvas::setShowsContours)
            ->setCheckable(true);
    QAction *const hide = add("hide", tr("&Hide Cut While Key Is Held"), Qt::Key_H, Shape::Hide,
                              &Canvas::setHidesMask);
    hide->setCheckable(true);
    connect(m_canvas, &Canvas::hidesMaskChanged, hide, &QAction::setChecked);
    menu->addSeparator();
    createDocks(menu);
}

void MainWindow::createViewModes(QMenu *menu)
{
    struct Entry
    {
        const char *id;
        QString text;
        Qt::Key key;
        ViewMode mode;
    };
    const std::array<Entry, 5> entries{{
            {"viewOverlay", tr("&Colour over the Background"), Qt::Key_1, ViewMode::Overlay},
            {"viewOutline", tr("Out&line"), Qt::Key_2, ViewMode::Outline},
            {"viewCheckerboard", tr("C&heckerboard"), Qt::Key_3, ViewMode::Checkerboard},
            {"viewBlackAndWhite", tr("&Black and White"), Qt::Key_4, ViewMode::BlackAndWhite},
            {"viewBackground", tr("Background Colou&r"), Qt::Key_5, ViewMode::Background},
    }};
    for (const Entry &entry : entries) {
        QAction *const action = addTo(menu, QString::fromLatin1(entry.id), entry.text, entry.key);
        action->setCheckable(true);
        action->setChecked(entry.mode == m_canvas->viewMode());
        m_viewModes->addAction(action);
        connect(action, &QAction::triggered, m_canvas,
                [this, mode = entry.mode] { m_canvas->setViewMode(mode); });
    }
}

void MainWindow::createBackgroundColors(QMenu *menu)
{
    QMenu *const colors = menu->addMenu(tr("B&ackground"));
    colors->setObjectName(QStringLiteral("backgroundMenu"));
    fillBackgroundColors(colors);
    connect(colors, &QMenu::aboutToShow, this, [this, colors] { fillBackgroundColors(colors); });
}

void MainWindow::fillBackgroundColors(QMenu *colors)
{
    colors->clear();
    const QList<QColor> settings = RyImageCutterSettings::instance().backgroundColors();
    for (const QColor &color : settings) {
        if (!color.isValid())
            continue;
        QAction *const action = colors->addAction(ColorIcon::make(color), ColorIcon::name(color));
        connect(action, &QAction::triggered, m_canvas, [this, color] {
            m_canvas->setBackgroundColor(color);
            m_canvas->setViewMode(ViewMode::Background);
            m_viewModes->actions().last()->setChecked(true);
        });
    }
}

void MainWindow::createDocks(QMenu *menu)
{
    addDock(menu, QStringLiteral("edges"), tr("Edge"), Qt::Key_F8, new EdgePanel(m_document));
    auto *const list = new QUndoView(m_document.undoStack());
    list->setEmptyLabel(tr("Picture opened"));
    list->setAccessibleName(tr("History"));
    list->setSpacing(2);
    list->setFrameShape(QFrame::NoFrame);
    addDock(menu, QStringLiteral("history"), tr("History"), Qt::Key_F9, list);
}

void MainWindow::addDock(QMenu *menu, const QString &id, const QString &title, Qt::Key key,
                         QWidget *content)
{
    auto *const dock = new QDockWidget(title, this);
    dock->setObjectName(id + QStringLiteral("Dock"));
    dock->setWidget(content); // and takes it
    addDockWidget(Qt::RightDockWidgetArea, dock);
    resizeDocks({dock}, {dockWidth}, Qt::Horizontal);
    m_workWidgets.append(dock);
    QAction *const toggle = dock->toggleViewAction();
    toggle->setObjectName(id);
    toggle->setShortcut(key);
    menu->addAction(toggle);
    addAction(toggle);
}

void MainWindow::createToolBars()
{
    auto *const tools = new QToolBar(tr("Tools"), this);
    tools->setObjectName(QStringLiteral("toolsBar"));
    tools->setIconSize(toolIconSize);
    tools->addActions(m_toolActions->actions());
    addToolBar(Qt::LeftToolBarArea, tools);
    m_workWidgets.append(tools);

    QToolBar *const main = addToolBar(tr("Main"));
    main->setObjectName(QStringLiteral("mainBar"));
    main->setIconSize(barIconSize);
    const auto add = [this, main](const char *id) {
        main->addAction(findChild<QAction *>(QString::fromLatin1(id)));
    };
    add("open");
    main->addSeparator();
    main->addActions({m_undoActions.undoAction(), m_undoActions.redoAction()});
    main->addSeparator();
    for (const char *const id : {"zoomOut", "zoomIn", "zoomFit", "zoomOriginal"})
        add(id);
    main->addSeparator();
    main->addWidget(createViewModeButton());
    add("contours");
    add("invert");
    m_optionsBar = addToolBar(tr("Tool Options"));
    m_optionsBar->setObjectName(QStringLiteral("optionsBar"));
    m_workWidgets.append({main, m_optionsBar});
}

/// Shows how the cut is shown, and offers the other ways.
QWidget *MainWindow::createViewModeButton()
{
    auto *const button = new QToolButton; // the tool bar takes it
    button->setIcon(VectorIcon::make(VectorIcon::Shape::Layers));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setToolTip(tr("How the cut is shown"));
    button->setAccessibleName(tr("How the cut is shown"));
    button->addActions(m_viewModes->actions());
    const auto show = [button](const QAction *mode) { button->setText(mode->iconText()); };
    show(m_viewModes->checkedAction());
    for (const QAction *const mode : m_viewModes->actions())
        connect(mode, &QAction::toggled, button, [mode, show](bool isChecked) {
            if (isChecked)
                show(mode);
        });
    return button;
}

#include "window/HelpSheet.h"

#include "tools/Tool.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QMenu>
#include <QMenuBar>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

QString row(const QString &left, const QString &right)
{
    return QStringLiteral("<tr><td width='46%'>%1</td><td>%2</td></tr>").arg(left, right);
}

QString section(const QString &title, const QString &rows)
{
    return QStringLiteral("<h3>%1</h3><table width='100%' cellpadding='2'>%2</table>")
            .arg(title.toHtmlEscaped(), rows);
}

QString keysOf(const QAction &action)
{
    QStringList keys;
    for (const QKeySequence &key : action.shortcuts())
        keys.append(QStringLiteral("<b>%1</b>")
                            .arg(key.toString(QKeySequence::NativeText).toHtmlEscaped()));
    return keys.join(QStringLiteral(", "));
}

QString rowsOf(const QMenu &menu)
{
    QString rows;
    for (const QAction *const action : menu.actions())
        if (!action->isSeparator())
            rows += row(action->iconText().toHtmlEscaped(), keysOf(*action));
    return rows;
}

QString toolRows(const ToolDescription &tool)
{
    QString rows =
            QStringLiteral("<tr><td colspan='2'>%1</td></tr>").arg(tool.hint.toHtmlEscaped());
    for (const auto &[control, effect] : tool.controls)
        rows += row(QStringLiteral("<b>%1</b>").arg(control.toHtmlEscaped()),
                    effect.toHtmlEscaped());
    return rows;
}

QString viewRows()
{
    const auto bold = [](const QString &text) {
        return QStringLiteral("<b>%1</b>").arg(text.toHtmlEscaped());
    };
    return row(bold(HelpSheet::tr("Wheel, pinch")), HelpSheet::tr("zoom at the pointer")) +
           row(bold(HelpSheet::tr("Middle button, Space and drag")),
               HelpSheet::tr("move the picture")) +
           row(bold(HelpSheet::tr("[ and ], Ctrl and wheel")), HelpSheet::tr("size of the brush"));
}

} // namespace

HelpSheet::HelpSheet(const QMenuBar &menus, const QList<Tool *> &tools, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("helpSheet"));
    setWindowTitle(tr("Tools and Keys"));
    QString html;
    for (const Tool *const tool : tools)
        html += section(tool->description().name, toolRows(tool->description()));
    html += section(tr("Anywhere on the picture"), viewRows());
    for (const QAction *const title : menus.actions())
        if (title->menu())
            html += section(title->iconText(), rowsOf(*title->menu()));
    auto *const text = new QTextBrowser;
    text->setAccessibleName(tr("Tools and keys"));
    text->setHtml(html);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(buttons);
    resize(560, 620);
}

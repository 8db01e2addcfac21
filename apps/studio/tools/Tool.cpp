#include "tools/Tool.h"

Tool::Tool(Document &document, QObject *parent)
    : QObject(parent)
    , m_document(document)
{}

QWidget *Tool::createOptions(QWidget *)
{
    return nullptr;
}

bool Tool::keyPress(const QKeyEvent &)
{
    return false;
}

bool Tool::keyRelease(const QKeyEvent &)
{
    return false;
}

bool Tool::wheel(double, Qt::KeyboardModifiers)
{
    return false;
}

#include "ReportFields.h"

#include "Kernel.h"
#include "RyPlatformIndependent.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QStringList>

using namespace Qt::StringLiterals;

QJsonObject ReportFields::size(const QSize &size)
{
    return {{u"width"_s, size.width()}, {u"height"_s, size.height()}};
}

QJsonObject ReportFields::head(const CuttingScale &scale)
{
    return {{u"library_version"_s, QCoreApplication::applicationVersion()},
            {u"kernel"_s, Kernel::used()},
            {u"cores"_s, RyPlatformIndependent::instance().coreCount()},
            {u"picture"_s, size(scale.pictureSize())},
            {u"cutting"_s, size(scale.cuttingSize())}};
}

QString ReportFields::hash(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QString ReportFields::stages(const QList<std::pair<QString, double>> &stages)
{
    QStringList texts;
    for (const auto &[name, milliseconds] : stages)
        texts.append(u"%1 %2 ms"_s.arg(name, QString::number(milliseconds, 'f', 1)));
    return texts.join(u", "_s);
}

#include "CaseFolder.h"

#include "Masks.h"
#include "cutout/AppError.h"

#include <QDir>
#include <QFile>
#include <QImageReader>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

QStringList linesOf(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw AppError(u"%1 cannot be read: %2"_s.arg(fileName, file.errorString()));
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

QImage pictureIn(const QString &fileName)
{
    QImageReader reader(fileName);
    const QImage image = reader.read();
    if (image.isNull())
        throw AppError(u"%1 cannot be read: %2"_s.arg(fileName, reader.errorString()));
    return image;
}

QPointF vertex(const QString &line, const QString &fileName)
{
    const QStringList numbers = line.simplified().split(u' ');
    bool hasX = false, hasY = false;
    const QPointF point(numbers.value(0).toDouble(&hasX), numbers.value(1).toDouble(&hasY));
    if (numbers.size() != 2 || !hasX || !hasY || !std::isfinite(point.x() + point.y()))
        throw AppError(u"%1: expected 'x y' but found '%2'"_s.arg(fileName, line));
    return point;
}

QPolygonF lassoIn(const QString &fileName)
{
    QPolygonF lasso;
    for (const QString &line : linesOf(fileName))
        lasso.append(vertex(line, fileName));
    if (lasso.size() < 3)
        throw AppError(u"%1: a lasso has three vertices or more"_s.arg(fileName));
    return lasso;
}

QString lassoName(const QString &kind)
{
    return kind == CaseFolder::kinds().first() ? u"lasso.txt"_s : u"lasso-%1.txt"_s.arg(kind);
}

} // namespace

CaseFolder::CaseFolder(const QString &path)
    : m_path(path)
{
    if (!QDir(path).exists(u"cases.csv"_s))
        throw AppError(u"%1 holds no cases.csv.\n%2"_s.arg(path, layout()));
    readList();
}

QStringList CaseFolder::kinds()
{
    return {u"ordinary"_s, u"uneven"_s, u"tight"_s, u"loose"_s};
}

QString CaseFolder::layout()
{
    return uR"(A folder of cases holds
  cases.csv         a line with the columns' names, "case" and "kind" among them, then one line a
                    case; the kind is "whole" for things a person would cut out, else "part"
  CASE/picture.jpg  the photograph
  CASE/truth.png    of the same size, white where the object is and black elsewhere
  CASE/lasso.txt    one vertex "x y" a line in pixels; beside it lasso-uneven.txt, lasso-tight.txt
                    and lasso-loose.txt, other hands round the same object
Photographs are not part of this project.)"_s;
}

QStringList CaseFolder::caseNames() const
{
    QStringList names;
    for (const Entry &entry : m_entries)
        names.append(entry.name);
    return names;
}

void CaseFolder::readList()
{
    const QString fileName = QDir(m_path).filePath(u"cases.csv"_s);
    const QStringList lines = linesOf(fileName);
    const QStringList columns = lines.value(0).trimmed().split(u',');
    const auto name = columns.indexOf(u"case"_s), kind = columns.indexOf(u"kind"_s);
    if (name < 0 || kind < 0)
        throw AppError(u"%1: expected the columns 'case' and 'kind'"_s.arg(fileName));
    for (const QString &line : lines.mid(1)) {
        const QStringList fields = line.trimmed().split(u',');
        if (fields.size() != columns.size())
            throw AppError(u"%1: expected %2 fields in '%3'"_s.arg(fileName)
                                   .arg(columns.size())
                                   .arg(line));
        m_entries.append({fields[name], fields[kind] == "whole"_L1});
    }
    if (m_entries.isEmpty())
        throw AppError(u"%1 lists no case"_s.arg(fileName));
}

CutCase CaseFolder::read(const QString &caseName, const QString &kind) const
{
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry &other) { return other.name == caseName; });
    if (entry == m_entries.end())
        throw AppError(u"%1 lists no case '%2'"_s.arg(m_path, caseName));
    const QDir folder(QDir(m_path).filePath(caseName));
    CutCase result{
            caseName,
            entry->isWholeThing,
            kind,
            pictureIn(folder.filePath(u"picture.jpg"_s)).convertToFormat(QImage::Format_ARGB32),
            Masks::thresholded(pictureIn(folder.filePath(u"truth.png"_s))),
            lassoIn(folder.filePath(lassoName(kind)))};
    if (result.truth.size() != result.picture.size())
        throw AppError(u"%1: picture and truth differ in size"_s.arg(folder.path()));
    return result;
}

#include "support/Patience.h"
#include "support/TestClasses.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <memory>
#include <numbers>

using namespace Qt::StringLiterals;

namespace {

constexpr double radius = 20.0, lassoRadius = 30.0;
const QPointF centre(60.0, 45.0);

struct Run
{
    int status = -1;
    QString output, errors;

    static Run of(const QStringList &arguments)
    {
        QProcess process;
        process.start(u"" RY_QUALITY_PROGRAM ""_s, arguments);
        Run run;
        if (process.waitForFinished(patienceMs) && process.exitStatus() == QProcess::NormalExit)
            run.status = process.exitCode();
        run.output = QString::fromUtf8(process.readAllStandardOutput());
        run.errors = QString::fromUtf8(process.readAllStandardError());
        return run;
    }
};

void store(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("Cannot write %s", qPrintable(fileName));
}

QString contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QImage disc(const QColor &object, const QColor &ground)
{
    QImage picture(120, 90, QImage::Format_RGB32);
    picture.fill(ground);
    QPainter painter(&picture);
    painter.setPen(Qt::NoPen);
    painter.setBrush(object);
    painter.drawEllipse(centre, radius, radius);
    return picture;
}

QByteArray circle(double lassoRadiusPixels)
{
    QByteArray text;
    for (int i = 0; i < 60; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / 60.0;
        text += QByteArray::number(centre.x() + lassoRadiusPixels * std::cos(angle)) + ' ' +
                QByteArray::number(centre.y() + lassoRadiusPixels * std::sin(angle)) + '\n';
    }
    return text;
}

} // namespace

class tst_quality : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void measuresAFolder();
    void enlarges();
    void refusesWhatItCannotMeasure_data();
    void refusesWhatItCannotMeasure();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_quality::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    store(path(u"cases.csv"_s), "case,width,kind\nround,120,whole\n");
    QVERIFY(QDir().mkpath(path(u"round"_s)));
    QVERIFY(disc(Qt::red, Qt::blue).save(path(u"round/picture.jpg"_s)));
    QVERIFY(disc(Qt::white, Qt::black).save(path(u"round/truth.png"_s)));
    store(path(u"round/lasso.txt"_s), circle(lassoRadius));
    store(path(u"round/lasso-tight.txt"_s), circle(radius));
}

void tst_quality::measuresAFolder()
{
    const Run run = Run::of({m_folder->path(), u"--kinds"_s, u"tight,ordinary"_s, u"--methods"_s,
                             u"classic,lasso"_s, u"--csv"_s, path(u"out.csv"_s), u"--sheet"_s,
                             path(u"sheet.png"_s), u"--repeat"_s, u"2"_s});
    QVERIFY2(run.status == 0, qPrintable(run.errors));
    QVERIFY(run.output.contains("=== tight lassos ==="_L1));

    const QStringList lines = contents(path(u"out.csv"_s)).split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 5);
    const QStringList ordinary = lines[2].split(u',');
    QCOMPARE(ordinary.mid(0, 4), QStringList({u"round"_s, u"whole"_s, u"ordinary"_s, u"lasso"_s}));
    const double expected = (radius * radius) / (lassoRadius * lassoRadius);
    QVERIFY(std::abs(ordinary[4].toDouble() - expected) < 0.02);
    QCOMPARE(ordinary[5].toDouble(), 0.0); // ten pixels outside
    const QStringList tight = lines[4].split(u',');
    QVERIFY(tight[4].toDouble() > 0.95 && tight[5].toDouble() == 1.0);
    const QStringList classic = lines[1].split(u',');
    QVERIFY(classic[4].toDouble() > 0.9); // pure colours
    QCOMPARE(classic[8], u"1"_s);

    for (const QString &name : {u"sheet-ordinary.png"_s, u"sheet-tight.png"_s})
        QVERIFY(QImage(path(name)).width() > 3 * 120);
}

void tst_quality::enlarges()
{
    const QStringList arguments{m_folder->path(), u"--kinds"_s, u"ordinary"_s,     u"--methods"_s,
                                u"lasso"_s,       u"--csv"_s,   path(u"out.csv"_s)};
    const auto overlap = [&](const QStringList &more) {
        const int status = Run::of(arguments + more).status;
        const QString line = contents(path(u"out.csv"_s)).split(u'\n').value(1);
        return status == 0 ? line.split(u',').value(4).toDouble() : -1.0;
    };
    const double plain = overlap({});
    QVERIFY(plain > 0.0);
    QVERIFY(std::abs(overlap({u"--scale"_s, u"3"_s}) - plain) < 0.02);
}

void tst_quality::refusesWhatItCannotMeasure_data()
{
    QTest::addColumn<QString>("fileName"); // what is spoilt, and with what
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("complaint");
    const QString none;
    QTest::newRow("option") << none << QByteArray() << QStringList{u"--methods"_s, u"magic"_s}
                            << u"'magic' is none of graph, classic"_s;
    QTest::newRow("case") << none << QByteArray() << QStringList{u"--cases"_s, u"square"_s}
                          << u"'square' is none of round"_s;
    QTest::newRow("scale") << none << QByteArray() << QStringList{u"--scale"_s, u"0"_s}
                           << u"--scale"_s;
    QTest::newRow("list") << u"cases.csv"_s << QByteArray("name\nround\n") << QStringList{}
                          << u"expected the columns"_s;
    QTest::newRow("lasso") << u"round/lasso.txt"_s << QByteArray("1 2\n3 nan\n") << QStringList{}
                           << u"'3 nan'"_s;
    QTest::newRow("truth") << u"round/truth.png"_s << QByteArray("P1 1 1 1") << QStringList{}
                           << u"differ in size"_s;
    QTest::newRow("picture") << u"round/picture.jpg"_s << QByteArray("no picture") << QStringList{}
                             << u"picture.jpg cannot be read"_s;
    QTest::newRow("output") << none << QByteArray()
                            << QStringList{u"--csv"_s, u"/nowhere/out.csv"_s}
                            << u"/nowhere/out.csv cannot be written"_s;
}

void tst_quality::refusesWhatItCannotMeasure()
{
    QFETCH(QString, fileName);
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, options);
    QFETCH(QString, complaint);
    if (!fileName.isEmpty())
        store(path(fileName), bytes);
    const Run run = Run::of(QStringList{m_folder->path(), u"--kinds"_s, u"ordinary"_s} + options);
    QCOMPARE(run.status, 1);
    QVERIFY2(run.errors.contains(complaint), qPrintable(run.errors));
}

RY_TEST_CLASS(tst_quality, QCoreApplication)
#include "tst_quality.moc"

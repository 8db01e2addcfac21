#include "background/BackgroundLane.h"
#include "cutout/AppError.h"
#include "support/Patience.h"
#include "support/TestClasses.h"

#include <QSemaphore>
#include <QTest>

#include <memory>
#include <new>

using Keeps = BackgroundLane::Keeps;

class tst_BackgroundLane : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsAllOrTheNewest();
    void cancelledWorkIsNotAnswered();
    void whatFailsSaysWhy();
};

/// While the first piece of work is held up, others come; then the lane goes, or does not.
void tst_BackgroundLane::keepsAllOrTheNewest()
{
    struct Case
    {
        Keeps keeps;
        bool goes;
        QList<int> done;
    };
    for (const Case &expected : {Case{Keeps::All, false, {0, 1, 2}},
                                 {Keeps::All, true, {0, 1, 2}},
                                 {Keeps::Newest, false, {0, 2}},
                                 {Keeps::Newest, true, {0}}}) {
        QSemaphore begun, mayEnd;
        QList<int> done, answered;
        auto lane = std::make_unique<BackgroundLane>(expected.keeps);
        const auto work = [&](int number) {
            begun.release();
            mayEnd.acquire();
            done.append(number);
            return number;
        };
        for (const int number : {0, 1, 2}) {
            lane->run([&work, number](const std::stop_token &) { return work(number); },
                      [&](int result) { answered.append(result); });
            if (number == 0)
                begun.acquire();
        }
        QVERIFY(lane->isBusy());
        mayEnd.release(3);
        if (expected.goes)
            lane.reset();
        else
            QTRY_VERIFY_WITH_TIMEOUT(!lane->isBusy(), patienceMs);
        QCoreApplication::processEvents();
        QCOMPARE(done, expected.done);
        QCOMPARE(answered, expected.goes ? QList<int>() : expected.done);
    }
}

void tst_BackgroundLane::cancelledWorkIsNotAnswered()
{
    BackgroundLane lane(Keeps::All);
    QSemaphore begun, mayEnd;
    bool wasStopped = false;
    QList<int> answered;
    const auto heldUp = [&](const std::stop_token &stop) {
        begun.release();
        mayEnd.acquire();
        wasStopped = stop.stop_requested();
    };
    for (const int number : {0, 1})
        lane.run(heldUp, [&answered, number] { answered.append(number); });
    begun.acquire();
    lane.cancel();
    QVERIFY(!lane.isBusy());
    lane.run([](const std::stop_token &) {}, [&answered] { answered.append(2); });
    mayEnd.release();
    QTRY_VERIFY_WITH_TIMEOUT(!lane.isBusy(), patienceMs);
    QCOMPARE(answered, QList<int>{2});
    QVERIFY(wasStopped);
}

void tst_BackgroundLane::whatFailsSaysWhy()
{
    BackgroundLane lane(Keeps::All);
    QStringList reasons;
    const auto note = [&reasons](const QString &reason) { reasons.append(reason); };
    lane.run([](const std::stop_token &) { throw AppError(QStringLiteral("it is shut")); }, [] {},
             note);
    lane.run([](const std::stop_token &) { throw std::bad_alloc(); }, [] {}, note);
    QTRY_VERIFY_WITH_TIMEOUT(!lane.isBusy(), patienceMs);
    QCOMPARE(reasons.join(u','), QStringLiteral("it is shut,there is too little memory"));
}

RY_TEST_CLASS(tst_BackgroundLane, QCoreApplication)
#include "tst_BackgroundLane.moc"

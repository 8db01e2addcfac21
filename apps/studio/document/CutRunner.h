#pragma once

#include "background/BackgroundLane.h"
#include "document/CutJob.h"
#include "document/CutState.h"
#include "document/Points.h"
#include "document/ReplayStep.h"
#include "gestures/Gesture.h"
#include "segmentation/RyImageSegmentation.h"

#include <QImage>
#include <QList>
#include <QObject>
#include <QSet>
#include <QTransform>

#include <deque>
#include <functional>
#include <memory>
#include <optional>

/**
 * Leads a segmentation session through steps, one after the other, without waiting: a step is one
 * or more gestures, and done when the session has answered them all.
 *
 * The session records nothing by itself: each step here tells what was there before and after it.
 *
 * Threads  the GUI thread.
 */
class CutRunner : public QObject
{
    Q_OBJECT

public:
    struct Step
    {
        QString name;
        CutState before;
        CutState after;
    };

    explicit CutRunner(QObject *parent = nullptr);
    ~CutRunner() override;

    /// Begins anew, with the picture in the size that it is cut at. Gestures are in pixels of the
    /// whole picture, which the transform takes there.
    void setPicture(const QImage &picture, const QTransform &pictureToCut);

    /// A step of gestures that are known already, each made when the one before it is answered;
    /// the wire that they use, if any, is part of the state before them.
    void apply(const QString &name, const QList<Gesture> &gestures,
               const std::shared_ptr<const UsedWire> &wire = {});
    /// A step of a session file, on top of all that its earlier ones did.
    void replay(const QString &name, const ReplayStep &step);
    /// A step of several ones, shown as they come: begin(), add() any number of times, then
    /// end(), or abandon() as if it had not begun.
    void begin(const QString &name);
    void add(const Gesture &gesture);
    void end();
    void abandon();

    bool isIdle() const { return m_jobs.empty() && !m_restoring.isBusy(); }
    bool isCutting() const; ///< a lasso, for the first time or anew; cancel() ends it
    /// Gives up what is not done. What was there before it is back when this returns.
    void cancel();
    /// The call comes when all steps so far are done.
    void whenIdle(const std::function<void()> &call);

    /// Gives up what is under way, and goes to another state; what has not begun follows.
    void restore(const CutState &state);
    CutState state() const;
    QList<Gesture> gestures() const;

    /// In the session's size and format; null without a cut.
    QImage mask() const { return m_mask; }
    QImage labels() const { return m_labels; }
    /// The regions under a round brush; its diameter is in pixels of the picture.
    QSet<int> regionsUnder(const PicturePoint &point, double diameter) const;
    /// In pixels of the size that the picture is cut at.
    QList<QPoint> pointsOfRegion(int region) const { return m_regions.value(region); }

Q_SIGNALS:
    void progress(int currentStep, int totalSteps); ///< of a lasso that is being cut
    void isCuttingChanged(bool isCutting);
    void maskChanged();
    void regionsChanged();
    void stepDone(const CutRunner::Step &step);
    void failed(const QString &reason);

private:
    using Failure = RyImageSegmentation::Failure;

    /// Of the first job, once it has begun.
    struct Running
    {
        explicit Running(const CutState &stateBefore)
            : before(stateBefore)
        {}

        CutState before;
        qsizetype started = 0; ///< gestures
        bool isGivenUp = false;
        std::optional<Failure> failure; ///< of any of them
    };

    StrokeJob *openStroke();
    void enqueue(CutJob job);
    void advance();
    bool performFirst();
    bool goOnWithStep();
    void beginStep();
    bool mayStartNext() const;
    void start(const Gesture &gesture);
    void finishStep(const CutJob &job, const Running &running);
    void giveUpFirst();
    void cancelCut(const CutState &before);
    void takeUnpacked(const std::shared_ptr<const RyMementoSegmentation> &memento);
    void hearMask(const QImage &mask);
    void setMask(const QImage &mask);
    void setRegions(const RyMementoSegmentation *memento);
    void announceCutting();

    QTransform m_pictureToCut;
    QImage m_picture;
    QList<QList<Gesture>> m_gestures; // of the state, step by step, without what is under way
    bool m_hasCut = false;
    QImage m_mask;
    QImage m_labels;
    QList<QList<QPoint>> m_regions;
    std::deque<CutJob> m_jobs;
    std::optional<Running> m_running;
    bool m_isAdvancing = false;
    bool m_wasCutting = false;
    RyImageSegmentation m_session; // it may still speak while it ends
    BackgroundLane m_restoring;
};

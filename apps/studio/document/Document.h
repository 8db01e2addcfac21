#pragma once

#include "background/BackgroundLane.h"
#include "document/CutRunner.h"
#include "document/CutoutSource.h"
#include "document/OpenedPicture.h"
#include "document/Points.h"
#include "document/ReplayStep.h"
#include "document/WireUse.h"

#include <QImage>
#include <QObject>
#include <QPolygonF>
#include <QSet>
#include <QString>

#include <memory>
#include <optional>

class EdgeStep;
class QUndoStack;
class RyUndoController;

/**
 * What the window works on: a picture, its cut, and the steps that led there. Coordinates are in
 * pixels of the picture, at whatever size it is cut.
 *
 * Nothing here waits: whatever is asked for is done in its order, and signals tell of it.
 *
 * Threads  the GUI thread.
 */
class Document : public QObject
{
    Q_OBJECT

public:
    enum class StrokeKind {
        Regions, ///< every region that the brush touches
        Pixels,  ///< just the pixels under it
    };
    struct Brush
    {
        StrokeKind kind = StrokeKind::Regions;
        double width = 1.0; ///< the diameter
        bool isForeground = true;
    };

    /// The undo controller's stack is the document's: there is one document at a time.
    explicit Document(QObject *parent = nullptr);
    ~Document() override;

    /// Begins anew; what was there before is gone.
    void setPicture(const OpenedPicture &picture);
    bool hasPicture() const { return !m_opened.picture.isNull(); }
    const OpenedPicture &opened() const { return m_opened; }
    QImage picture() const { return m_opened.picture; }

    bool hasCut() const { return !m_runner.mask().isNull(); }
    /// In the size and format of the session's: transparent where the object is. Null without a
    /// cut.
    QImage mask() const { return m_runner.mask(); }
    /// The regions in the mask's size, a number a pixel, 0 for none. Null without a cut.
    QImage labels() const { return m_runner.labels(); }
    QSet<int> regionsUnder(const PicturePoint &point, double diameter) const;
    /// In pixels of the labels.
    QList<QPoint> pointsOfRegion(int region) const { return m_runner.pointsOfRegion(region); }

    /// What a session file has to tell. Gestures that were undone are not among them.
    QList<Gesture> gestures() const { return m_runner.gestures(); }
    bool isModified() const;
    void setSaved();   ///< as it is now
    void setUnsaved(); ///< however it came to be as it is
    /// Where the picture is from now on.
    void setPictureFile(const QString &fileName, const QByteArray &sha256);

    /// Does to the picture what a session file tells; replayEnded() says when that is done.
    void replay(const QList<ReplayStep> &steps);
    bool isReplaying() const { return m_replaySteps > 0; }

    void cutLasso(const QPolygonF &lasso);
    /// The outline closes itself. Without a cut, nothing can be taken away. The wire comes back
    /// when this is undone.
    void useWire(const QPolygonF &outline, WireUse use,
                 const std::shared_ptr<const UsedWire> &wire = {});
    void toggleRegion(const PicturePoint &point);
    void invert();
    /// How lassos are cut from now on; what is cut already stays until it is cut anew.
    void setCutMethod(RyImageSegmentation::CutMethod method) { m_cutMethod = method; }
    RyImageSegmentation::CutMethod cutMethod() const { return m_cutMethod; }
    /// Cuts the last lasso anew. By graph cuts, everything that corrections have touched stays.
    void recut();
    /// A stroke is shown while it is drawn: begin, add points any number of times, end or abandon.
    void beginStroke(const Brush &brush, const PicturePoint &point);
    void continueStroke(const QPolygonF &points);
    void endStroke();
    void abandonStroke();

    const EdgeSettings &edgeSettings() const { return m_edges; }
    /// A step of this name. It goes on with the last one while that has the same name, so that all
    /// the way of a slider is undone at once.
    void setEdgeSettings(const EdgeSettings &settings, const QString &stepName);
    CutoutSource cutoutSource() const { return {m_opened, mask(), m_edges}; }

    bool isCutting() const { return m_runner.isCutting(); }
    bool isBusy() const { return !m_runner.isIdle(); }
    QUndoStack *undoStack() const;

public Q_SLOTS:
    /// Gives up what is under way. The state before it is back when this returns.
    void cancel();
    /// What is under way is finished before it is undone, but a lasso is given up.
    void undo();
    void redo();

Q_SIGNALS:
    void pictureChanged();
    void maskChanged();
    void regionsChanged();
    void edgeSettingsChanged();
    void progress(int currentStep, int totalSteps); ///< of a cut
    void isCuttingChanged(bool isCutting);
    void isModifiedChanged(bool isModified);
    void failed(const QString &sentence);
    void replayProgress(int currentStep, int totalSteps);
    void replayEnded(bool isComplete); ///< false when it was cancelled
    /// After steps were undone or done again: the wire that lies on the picture now, or null.
    void wireReturned(const std::shared_ptr<const UsedWire> &wire);
    void remarked(const QString &sentence); ///< nothing has failed, but people may wonder

private:
    Gesture methodGesture() const;
    void record(const CutRunner::Step &step);
    /// A step of the last one's name.
    void apply(const QList<Gesture> &gestures, const std::shared_ptr<const UsedWire> &wire = {});
    void returnWire();
    Gesture strokeGesture(const QPolygonF &points) const;
    void addToStroke(const QPolygonF &points);
    bool continuesEdgeStep(const QString &stepName) const;
    void showEdgeSettings(const EdgeSettings &settings);
    void takeForMask(const QPolygonF &outline, const std::shared_ptr<const UsedWire> &wire);
    void endReplay(bool isComplete);

    RyUndoController *const m_undoController; // the library's own, which outlives us
    OpenedPicture m_opened;
    RyImageSegmentation::CutMethod m_cutMethod = RyImageSegmentation::CutMethod::GraphCut;
    Brush m_brush;
    PicturePoint m_lastStrokePoint;
    EdgeSettings m_edges;
    std::weak_ptr<EdgeStep> m_edgeStep; // the undo stack's; null when nothing can go on with it
    int m_edgeStepIndex = 0;            // of the stack, right after that step
    /// Of the step that was undone or done again last, null for none, until the stack tells of it.
    std::optional<std::shared_ptr<const UsedWire>> m_wireBeforeNext;
    int m_replaySteps = 0; // while a session file is played
    int m_replayedSteps = 0;
    CutRunner m_runner;
    BackgroundLane m_packing; // of steps
};

#pragma once

#include "RyImageCutterExport.h"
#include "segmentation/RyMementoSegmentation.h"
#include "segmentation/RySegmentationStatistics.h"
#include "segmentation/RySegmentationThread.h"

#include <QColor>
#include <QFileInfo>
#include <QImage>
#include <QList>
#include <QPainterPath>
#include <QPoint>
#include <QSet>

#include <memory>

class RyPreparedLasso;
class RyUndoController;

/**
 * A cut-out session on one picture: the object a host holds, drives with the user's gestures and
 * hears from through signals.
 *
 * Give it a picture with setup(), a mask colour, and a closed lasso with
 * startThreadWithInitialPath(); it answers with segmentationProgress() and sendNewMask(). Then the
 * user corrects the cut, region by region or pixel by pixel, with the other slots.
 *
 * Gestures are applied in the order of the calls. Strokes that arrive faster than they are cut are
 * cut together, on the side that the newest stroke or hover names. A gesture that can be undone is
 * one or more temporary strokes (previews) and a final one: the final one hands a step to the undo
 * controller that restores what was there before the first, or what was there when the final one
 * arrived. A final stroke alone records nothing, nor does a click.
 *
 * Input    any picture QImage holds; paths in picture pixels, whatever their shape: points outside
 *          the picture, or within 2 % of its border, count as on the border.
 * Output   masks of the picture's size, Format_ARGB32_Premultiplied: transparent where the object
 *          is, elsewhere the opaque mask colour.
 *          With CutMethod::GraphCut a new lasso's mask comes as soon as it is cut, and once more, with
 *          what was scribbled on it meanwhile, when the regions for corrections are there; a region
 *          is on the side that holds most of it.
 * Source   SLIC superpixels, joined by graph-based region growing, judged by a colour histogram or
 *          by graph cuts; docs/design.md names the papers.
 * Errors   failed() tells of too little memory, and of threads that could not be started, beside a
 *          null mask where a mask was due. Otherwise none: a path with coordinates that are not finite is ignored; of a point those
 *          that are not a number count as 0, infinite ones as on the border; a lasso without area
 *          inside the picture gives a mask without foreground; an empty picture gives none.
 *          Corrections before a first lasso find no regions.
 * Threads  every public call belongs to the thread that made the object; they may come in any order
 *          at any time, and none waits for work that another thread has begun on a lasso. Calls
 *          that draw a picture draw it in the caller's thread; so work setup() for a picture that
 *          must be converted, containsPath(), setMemento() and setMaskIsInverted().
 *          Signals are emitted from
 *          several threads: connect them with the default connection type and they arrive in the
 *          receiver's thread. A mask that was on its way when reset() was called may arrive after
 *          reset()'s null mask. Results do not depend on the number of cores.
 */
class RYIMAGECUTTER_EXPORT RyImageSegmentation : public RySegmentationThread
{
    Q_OBJECT

public:
    /// What the session's thread does.
    enum SegmentationMode : int {
        Idle = 0,
        InitialCut = 1,
        PaintSelection = 2,
        PaintSelectionHover = 3,
        Scribble = 4,
        UpdateMask = 5,
        InvertMask = 6,
    };

    /// How a lasso is cut for the first time.
    enum class CutMethod : int {
        Classic = 0,  ///< by regions whose colours are rarer outside the lasso
        GraphCut = 1, ///< by minimum cuts with colour models of both sides; an outline of its own
    };
    Q_ENUM(CutMethod)

    RyImageSegmentation();
    /// Asks running work to stop, and waits for the step that it is at.
    ~RyImageSegmentation() override;
    Q_DISABLE_COPY_MOVE(RyImageSegmentation)

    /// Begins a session on a picture, which is converted to Format_ARGB32 where it is something
    /// else; a null picture empties the session. Nothing computed for an earlier picture is
    /// adopted.
    void setup(const QImage &image, const QFileInfo &fileInfo);
    /// Replaces the picture as given. Results of another size are dropped from then on, others are
    /// still adopted; the next lasso is computed anew.
    void setImage(const QImage &image);

    /// Forgets the regions and what was asked for, and emits a null mask and progress 0. The mask
    /// stays readable with maskForeground() until the next lasso, unless the picture is null.
    void reset();
    /// Interrupts the session's thread with its worker, then reset(). While the thread is idle a
    /// worker on the pool is left alone, and its result still adopted.
    void cancel();

    /// True while there are regions to refine.
    bool isValid() const;
    /// True while the session's thread, a worker or a click is at work or has something yet to do;
    /// becameIdle() follows. When it is false, every call is answered: signals are at least on their
    /// way, and maskForeground() holds all that was asked for.
    bool isBusy() const;
    QImage maskForeground() const;
    /// True when the path lies within the lasso that the regions were computed for, grown by ten
    /// pixels. Takes time in proportion to the path's area.
    bool containsPath(const QPainterPath &path) const;
    /// The painted selection that was applied last. Of strokes that were applied together it is the
    /// pixels that they cover, as a path of rectangles.
    QPainterPath lastPath() const;

    /// The region at a point, which is moved into the picture first; 0 where there is none.
    int safeGetSuperPixelAt(const QPoint &point) const;
    /// The regions within a round brush of this diameter in pixels: all with a pixel nearer than
    /// diameter / 2 + 1 (rounded down) to its centre. A diameter of 1 gives the region at the
    /// point, also 0, which stands for none. Time in proportion to the brush's area.
    QSet<int> superpixels(const QPoint &point, int diameter) const;
    /// The pixels of the region at a point; empty where there is none.
    QList<QPoint> pointsOfSuperpixel(const QPointF &point) const;

    /// Only red, green and blue count. Recolours a mask in the session's thread.
    void setMaskColor(const QColor &color);
    /// Counts from the next lasso or recut() on. Classic at first.
    void setCutMethod(CutMethod method);
    CutMethod cutMethod() const;

    /// Inverts the mask in the session's thread; while that is busy, only the flag changes.
    void invertMask();
    /// Inverts the mask at once, in the caller's thread, when the flag changes and isValid().
    void setMaskIsInverted(bool inverted);

    /// The state of the cut; with superpixel data it carries labels and points of regions as well.
    /// The caller owns it.
    [[nodiscard]] RyMementoSegmentation *createMemento(bool withSuperPixelData) const;
    /// Restores a state, and emits its mask; the memento stays the caller's. It replaces what came
    /// before it, also a stroke that is being cut, while strokes that wait are applied to it. A lasso
    /// that is being computed goes on, and its cut will replace what was restored. Of a memento whose
    /// mask is of another size than the picture only the sets are taken. Regions that come from a
    /// memento serve refinement and recut(). With too little memory nothing is changed.
    void setMemento(const RyMementoSegmentation *memento);
    /// Whether gestures and recuts leave steps with the undo controller, as they do at first. For
    /// hosts that record steps of their own.
    void setRecordsSteps(bool records);
    /// Where finished gestures go; never null. The photo editor's at first.
    RyUndoController *undoController() const;
    /// Another one, which must outlive the session. For hosts that have a list of steps for each
    /// picture; before the first gesture.
    void setUndoController(RyUndoController &controller);
    RySegmentationStatistics statistics() const;

    /// The mask with some regions' pixels on one side, as hovering shows it: the pixel in the top
    /// left corner keeps its side.
    QImage maskWithSegments(const QSet<int> &clusters, bool isForeground) const;
    /// A path filled opaque white on black, without antialiasing, in the mask's size.
    QImage createMask(const QPainterPath &path) const;
    /// The lasso grown by ten pixels, likewise, in the picture's size.
    QImage createImageWithLassoPath() const;
    /// The mask with its outline rounded by a blur of this radius in pixels, as a one-bit picture.
    /// GUI thread, with a QApplication. Rendering into one bit goes by lightness: only a light mask
    /// colour, such as white, gives a mask that is not empty. Null without a mask.
    QImage createSmoothForegroundMask(int radius) const;
    /// Outlines of all regions, opaque white on transparent, Format_ARGB32, the picture's size;
    /// without outlines where labels and picture differ in size.
    QImage drawContour() const;

public Q_SLOTS:
    /// Moves every region that a filled path touches to one side; isForeground adds it to the
    /// object. A temporary stroke previews a gesture, the one that is not temporary ends it.
    void startThreadWithPaintSelection(const QPainterPath &theScribble, bool isForeground,
                                       bool isTemporary);
    /// Paints the filled path itself into the mask; regions keep their sides.
    void startThreadWithScribble(const QPainterPath &theScribble, bool isForeground,
                                 bool isTemporary);
    /// Sends the mask as it would look with these regions on one side. Only the newest call counts;
    /// an empty set sends nothing.
    void startThreadWithPaintSelectionHover(const QSet<int> &theClusters, bool isForeground);
    /// A new lasso. Inside the last one its regions are used again, else new ones are computed.
    void startThreadWithInitialPath(const QPainterPath &thePath);
    /// Moves the region at a point to its other side. Sends no mask; see becameIdle().
    void startThreadWithClicker(const QPointF &thePosition);
    /// For the session's own workers; signals of others are ignored.
    void setProgressFromWorker(int theCurrentStep, int theTotalStep);
    void resetProgress();
    /// Cuts the lasso anew with the method that is set, as one step that can be undone. By graph cuts
    /// every pixel that a click, scribble or painted selection has put on a side since the lasso
    /// stays there, and colour models learn from it; corrections of a classic cut are not kept. Does
    /// nothing without regions of the lasso, or of a picture of this size. Regions of a memento that
    /// createMemento() has made are cut like their lasso's own; by graph cuts those that a host has
    /// made are as well, while classic cuts then do nothing.
    void recut();

Q_SIGNALS:
    void segmentationProgress(int currentStep, int totalSteps);
    void sendNewMask(const QImage &theImage);  ///< null from reset()
    void sendContours(const QImage &theImage); ///< for hosts; never emitted by the session

protected:
    void run() override;

private:
    struct Private;

    // Host thread.
    void startSessionThread();
    void startInitialSegmentation(const RyPreparedLasso &lasso);
    void initialSegmentationIsFinished();
    void forgetWorker();
    void releaseFormerWorker();
    void showFirstCut();
    void startWithStroke(SegmentationMode mode, const QPainterPath &path, bool isForeground,
                         bool isTemporary);

    const std::shared_ptr<Private> d; // clicks on the pool share it
};

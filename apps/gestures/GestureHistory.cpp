#include "gestures/GestureHistory.h"

#include <optional>
#include <utility>

namespace {

/// Null for all that is no stroke.
Gesture::Stroke *strokeOf(Gesture &gesture)
{
    if (auto *const paint = std::get_if<Gesture::Paint>(&gesture.step))
        return paint;
    return std::get_if<Gesture::Scribble>(&gesture.step);
}

/// What undoing and doing again leave of gestures, as the session does it: only new cuts and
/// strokes with temporary parts can be undone, and doing a stroke again brings back its temporary
/// parts, but not the final one.
class Replay
{
public:
    void add(Gesture gesture)
    {
        if (const auto *const method = std::get_if<Gesture::Method>(&gesture.step))
            m_method = *method;
        if (std::holds_alternative<Gesture::Recut>(gesture.step))
            note({m_gestures, m_gestures + QList<Gesture>{gesture}});
        if (const Gesture::Stroke *const stroke = strokeOf(gesture))
            noteStroke(stroke->isTemporary);
        m_gestures.append(gesture);
    }

    void undo()
    {
        if (m_next == 0)
            return;
        m_gestures = m_steps.at(--m_next).before;
        keepMethod();
    }

    void redo()
    {
        if (m_next == m_steps.size())
            return;
        m_gestures = m_steps.at(m_next++).after;
        if (Gesture::Stroke *const stroke =
                    m_gestures.isEmpty() ? nullptr : strokeOf(m_gestures.last()))
            stroke->isTemporary = false; // nothing more of it is to come
        keepMethod();
    }

    QList<Gesture> gestures() const { return m_gestures; }

private:
    struct Step
    {
        QList<Gesture> before;
        QList<Gesture> after;
    };

    void noteStroke(bool isTemporary)
    {
        if (isTemporary && !m_beforeStroke)
            m_beforeStroke = m_gestures;
        if (isTemporary || !m_beforeStroke)
            return;
        note({*m_beforeStroke, m_gestures});
        m_beforeStroke.reset();
    }

    void note(const Step &step)
    {
        m_steps.resize(m_next);
        m_steps.append(step);
        ++m_next;
    }

    /// The one way to cut that is in force, whatever is undone.
    void keepMethod()
    {
        bool isGraphCut = Gesture::Method().isGraphCut;
        for (const Gesture &gesture : std::as_const(m_gestures))
            if (const auto *const method = std::get_if<Gesture::Method>(&gesture.step))
                isGraphCut = method->isGraphCut;
        if (isGraphCut != m_method.isGraphCut)
            m_gestures.append(Gesture(m_method));
    }

    QList<Gesture> m_gestures;
    Gesture::Method m_method;
    std::optional<QList<Gesture>> m_beforeStroke; // whose final part has not come yet
    QList<Step> m_steps;
    qsizetype m_next = 0; // of the steps, to be done again
};

} // namespace

QList<Gesture> GestureHistory::withoutUndo(const QList<Gesture> &gestures)
{
    Replay replay;
    for (const Gesture &gesture : gestures) {
        if (std::holds_alternative<Gesture::Undo>(gesture.step))
            replay.undo();
        else if (std::holds_alternative<Gesture::Redo>(gesture.step))
            replay.redo();
        else
            replay.add(gesture);
    }
    return replay.gestures();
}

QList<QList<Gesture>> GestureHistory::inSteps(const QList<Gesture> &gestures)
{
    QList<QList<Gesture>> steps;
    bool goesOn = false;
    for (Gesture gesture : gestures) {
        const Gesture::Stroke *const stroke = strokeOf(gesture);
        const bool continues =
                goesOn && stroke && steps.last().last().step.index() == gesture.step.index();
        if (continues)
            steps.last().append(gesture);
        else
            steps.append({gesture});
        goesOn = stroke && stroke->isTemporary;
    }
    return steps;
}

#pragma once

#include "gestures/Gesture.h"
#include "gestures/GestureFields.h"

#include <QByteArray>
#include <QString>

/**
 * Takes the text of a session apart, line by line and word by word. Comments and empty lines are
 * skipped.
 *
 * Errors   thrown as AppError.
 */
class GestureReader : public GestureFields
{
public:
    /// The name is for messages.
    GestureReader(const QByteArray &text, const QString &name);

    /// Goes to the next line that says something; false when there is none.
    bool nextLine();
    /// The line's first word.
    QByteArrayView lineWord() const { return m_lineWord; }
    /// How messages say what the line should look like.
    void setForm(const QByteArray &form) { m_form = form; }
    /// The next word, which has to be one in this range.
    int takeNumber(int least, int most);
    /// The next word, empty at the line's end.
    QByteArrayView takeWord();
    void expectEndOfLine();
    /// The brush's width from here on.
    void takeBrushWidth();

    [[noreturn]] void fail(const QString &message) const;
    /// Says that this was expected instead of the word that was taken last.
    [[noreturn]] void failExpecting(const QString &expected) const;

    void point(QPointF &point) override;
    void points(QPolygonF &points, int fewest) override;
    void choice(bool &value, QByteArrayView whenTrue, QByteArrayView whenFalse) override;
    void diameter(int &diameter) override;
    void color(QColor &color) override;
    void brushWidth(double &width) override;

private:
    bool isAtEndOfLine();
    void skipBlanks();
    double coordinate();

    const QByteArray m_text;
    const QString m_name;
    QByteArrayView m_unread; // after the current line
    int m_lineNumber = 0;
    QByteArrayView m_line; // what is left of it
    QByteArrayView m_lineWord;
    QByteArrayView m_word; // taken last
    QByteArray m_form;
    double m_brushWidth = Gesture::Stroke().width;
};

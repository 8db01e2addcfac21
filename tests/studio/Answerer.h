#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>

/// Answers questions that have event loops of their own.
class Answerer
{
public:
    Answerer()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            if (auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
                press(*box);
        });
    }

    /// The next one, whenever it comes.
    void answer(QMessageBox::StandardButton button)
    {
        constexpr int intervalMs = 5;
        m_button = button;
        m_timer.start(intervalMs);
    }
    int count() const { return m_count; } ///< of those that were answered
    QString lastQuestion() const { return m_lastQuestion; }

private:
    void press(const QMessageBox &box)
    {
        m_timer.stop();
        ++m_count;
        m_lastQuestion = box.text();
        box.button(m_button)->click();
    }

    QMessageBox::StandardButton m_button = QMessageBox::NoButton;
    int m_count = 0;
    QString m_lastQuestion;
    QTimer m_timer;
};

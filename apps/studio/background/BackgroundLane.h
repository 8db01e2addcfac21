#pragma once

#include <QObject>
#include <QString>
#include <QThreadPool>

#include <deque>
#include <functional>
#include <stop_token>
#include <type_traits>

/**
 * Work beside the event loop, one piece after the other.
 *
 * Work     gets a stop token and may end early once a stop is requested: nobody asks for its
 *          result then. What it returns has to be copyable.
 * Answers  come from the event loop, in the order of the calls: what work has returned, or why
 *          there is nothing. None comes after cancel(), or once the lane is gone.
 * Errors   AppError and want of memory reach onError as a clause for people.
 * Threads  the lane belongs to its owner's thread, work is done in another one. The destructor
 *          waits for what runs, so a lane that comes last among the members of its owner may use
 *          the others.
 */
class BackgroundLane : public QObject
{
    Q_OBJECT

public:
    enum class Keeps {
        All,    ///< each piece is done, even if the lane is to go meanwhile
        Newest, ///< of what waits only the last; nothing more is begun once the lane is to go
    };

    explicit BackgroundLane(Keeps keeps, QObject *parent = nullptr);
    ~BackgroundLane() override;

    template <typename Work, typename Then, typename OnError>
    void run(const Work &work, const Then &then, const OnError &onError)
    {
        const auto answering = [work, then](const std::stop_token &stop) -> Answer {
            if constexpr (std::is_void_v<std::invoke_result_t<Work, std::stop_token>>) {
                work(stop);
                return then;
            } else {
                return [then, result = work(stop)] { then(result); };
            }
        };
        enqueue({answering, onError});
    }
    /// Nobody needs to know where it cannot be done.
    template <typename Work, typename Then>
    void run(const Work &work, const Then &then)
    {
        run(work, then, [](const QString &) {});
    }

    bool isBusy() const { return m_begun > 0; } ///< no more so when the last answer comes
    void cancel();                              ///< what waits; what runs is asked to stop
    void waitForDone();                         ///< no answer comes any sooner

Q_SIGNALS:
    void isBusyChanged(bool isBusy);

private:
    using Answer = std::function<void()>;

    struct Task
    {
        std::function<Answer(const std::stop_token &)> work;
        std::function<void(const QString &)> onError;
    };

    void enqueue(const Task &task);
    void beginFirst();
    static Answer done(const Task &task, const std::stop_token &stop);
    void deliver(const Answer &answer, const std::stop_token &stop);

    const Keeps m_keeps;
    std::deque<Task> m_waiting;
    int m_begun = 0;         // and not answered, without what was cancelled
    std::stop_source m_stop; // of all since the last cancel()
    QThreadPool m_pool;
};

#pragma once

#include "RyCoreExport.h"

#include <QIODevice>
#include <QString>

#include <span>

/**
 * A file that appears complete or not at all: until commit() its place shows what was there before,
 * and it goes on to do so when anything fails.
 *
 * Links    are followed: what they lead to is replaced, and they stay. Permissions stay as well.
 * Crashes  a process that is killed leaves nothing behind where the system knows files without a
 *          name, as Linux does on most disks; else a file beside the place, with a dot and six
 *          letters after its name.
 * Errors   told by errorString(), which says what is full where something is. What has failed once
 *          stays failed, so nobody need look at what each write returns.
 * Threads  one at a time.
 */
class RYCORE_EXPORT RySafeFile : public QIODevice
{
public:
    explicit RySafeFile(const QString &fileName);
    ~RySafeFile() override;
    Q_DISABLE_COPY_MOVE(RySafeFile)

    /// For writing, whatever the mode. False where nothing can be written: where the folder does not
    /// allow it, where what is there may only be read, and where it is no regular file.
    bool open(OpenMode mode = WriteOnly) override;

    /// Brings everything to the disk. Then only a change of names is left to commit().
    bool finish();
    /// Puts the file in its place, after finishing it.
    bool commit();
    /// Puts files that belong together in their places, once all of them are finished. Where one
    /// cannot be put there, those that could are taken back. Returns that one; null for success.
    static RySafeFile *commitAll(std::span<RySafeFile *const> files);

    qint64 size() const override;

protected:
    qint64 readData(char *data, qint64 size) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    bool fail(int error);
    bool giveName();
    void keepPresent();
    void takeBack();
    void discard();

    const QString m_place;   // where links lead
    QString m_temporaryName; // empty while the file has none, or its own
    QString m_keptName;      // of what was in the place, while it may have to go back there
    int m_file = -1;
    bool m_hasFailed = false;
    bool m_canBeTakenBack = false;
};

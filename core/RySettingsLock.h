#pragma once

#include "RyCoreExport.h"

#include <QtGlobal>

/**
 * Holds the settings file for one whole load or save.
 *
 * Everything that is read under the lock comes from one reading of the file. Everything that is
 * written is collected, reaches the file together when the lock is released, and can be read after
 * that. Locks may nest within a thread; the outermost one counts.
 *
 * Errors   none thrown; RySettings says what becomes of a file that cannot be read or written.
 * Threads  any; the constructor blocks while another thread holds a lock. Other processes are kept
 *          out only while the file is written.
 */
class RYCORE_EXPORT RySettingsLock
{
public:
    RySettingsLock();
    ~RySettingsLock();
    Q_DISABLE_COPY_MOVE(RySettingsLock)
};

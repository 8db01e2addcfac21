#include "RySettingsLock.h"

#include "RySettingsStore.h"

RySettingsLock::RySettingsLock()
{
    RySettingsStore::instance().lock();
}

RySettingsLock::~RySettingsLock()
{
    RySettingsStore::instance().unlock();
}

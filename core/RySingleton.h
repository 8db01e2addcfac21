#pragma once

#include "RyCoreExport.h"

/**
 * The one instance of T in a process, made at its first use.
 *
 * T derives from RySingleton<T>, has a default constructor that RySingleton<T> may call, and may
 * override setupInstance(), which runs once on the new object before anybody sees it.
 *
 * Threads  instance() is safe from every thread; whether T itself is, T says.
 */
template <typename T>
class RYCORE_EXPORT RySingleton // exported: one instance for all libraries of a process
{
public:
    RySingleton(const RySingleton &) = delete;
    RySingleton &operator=(const RySingleton &) = delete;

    static T &instance()
    {
        static Holder holder;
        return holder.object;
    }

protected:
    RySingleton() = default;
    virtual ~RySingleton() = default;
    virtual void setupInstance() {}

private:
    struct Holder
    {
        Holder() { static_cast<RySingleton &>(object).setupInstance(); }
        T object;
    };
};

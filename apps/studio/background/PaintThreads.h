#pragma once

/// Threads for what the GUI thread draws.
namespace PaintThreads {

/// Once in a process, before anything is drawn. Qt's painter divides large areas among the global
/// thread pool and waits for its share: while sessions fill the pool with computations of their
/// own, the event loop would stand still until one of them ends.
void reserve();

} // namespace PaintThreads

#pragma once

namespace tavi {

/// How a program that handles pictures for hours gets memory from the system, and gives it back.
///
/// The C library keeps what is freed in pools, one per few threads. A picture there is free space
/// between small things that live on, and every thread of every export leaves some behind. So
/// blocks of a megabyte and more are the system's own, for the whole life of the process: they go
/// back when they are freed.
/// To be called first, before there are threads. Nothing happens on other C libraries.
void keepLargeBlocksApart();

/// Hands what the pools hold in whole free pages back to the system. Takes milliseconds, in which
/// other threads may wait for memory. Thread: any.
void giveFreeMemoryBack();

} // namespace tavi

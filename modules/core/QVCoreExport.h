/// \file
/// The attribute that exports platform functions.
#ifndef QV_CORE_QVCOREEXPORT_H
#define QV_CORE_QVCOREEXPORT_H

/// Marks a platform function. A shared qvnalu resolves these functions in the program or library that defines
/// them, so they must stay visible there even when everything else is compiled with hidden visibility.
#if defined(__GNUC__)
#define QV_CORE_API __attribute__((visibility("default")))
#else
#define QV_CORE_API
#endif

#endif

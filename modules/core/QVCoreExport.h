/// \file
/// The mark of the platform functions.
#ifndef QV_CORE_QVCOREEXPORT_H
#define QV_CORE_QVCOREEXPORT_H

/// Marks a platform function. A shared qvnalu finds them in the program or the library that brings them: they
/// have to be visible there, also when everything else is compiled with hidden visibility.
#if defined(__GNUC__)
#define QV_CORE_API __attribute__((visibility("default")))
#else
#define QV_CORE_API
#endif

#endif

// Standard input, output and error as the program was started with them.
#ifndef QVINSPECT_STANDARDSTREAMS_H
#define QVINSPECT_STANDARDSTREAMS_H

namespace qvinspect {

// Opens those of the descriptors 0 to 2 that are closed, so that no file that is opened later becomes a
// standard stream. Reading from a descriptor 0 opened here fails, as does writing to a descriptor 1 or 2.
// Call this before anything else opens a file. Returns false if a descriptor cannot be opened.
bool openStandardStreams();

// False for a descriptor that this program opened itself, and for one that is closed.
bool isInherited(int descriptor);

// Reports whether the descriptor is open for reading, or for writing.
bool isReadable(int descriptor);
bool isWritable(int descriptor);

}  // namespace qvinspect

#endif

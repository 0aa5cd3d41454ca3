// The trace of every command the library sends, one line per command:
//   "<device> <command name> CDB <cdb bytes in hex> -> <status as %04X> in <ms> ms"
// (the name, "READ DISC INFORMATION" for example, is left out for an operation code the library
// does not know)
// followed by ", residual <n>" when bytes were left untransferred and ", sense <hex>" when the
// device returned sense data. The library keeps no log of its own: the lines go to the sink
// its user installs, and nothing is formatted while none is installed or it wants none.
#pragma once

#include <memory>
#include <string>

#include "scsi/Export.h"
#include "scsi/Transport.h"

namespace kivscsi {

// Receives trace lines. Called from whichever thread sends a command, possibly several at once.
class SCSI_API TraceSink {
public:
    virtual ~TraceSink();
    // Whether a line is wanted now; when false, the line is not even formatted.
    virtual bool enabled() const = 0;
    // One command's line, UTF-8, without a line end.
    virtual void write(const std::string& line) = 0;
};

// Makes `sink` (nullptr: none) the sink of every command sent from now on, and returns the one
// it replaces. Safe while commands are being sent on other threads.
SCSI_API std::shared_ptr<TraceSink> installTraceSink(std::shared_ptr<TraceSink> sink);

// The sink installed now, or nullptr.
SCSI_API std::shared_ptr<TraceSink> installedTraceSink();

// Sends through a transport and writes each command's line to a sink, including commands the
// transport refused.
class SCSI_API TracingTransport {
public:
    // Takes ownership of `inner`. REQUIRES: inner != nullptr. `sink` may be nullptr (no trace).
    TracingTransport(std::unique_ptr<Transport> inner, std::string deviceName,
                     std::shared_ptr<TraceSink> sink);
    ScsiResponse send(const ScsiCommand& command);

private:
    std::unique_ptr<Transport> inner_;
    std::string deviceName_;
    std::shared_ptr<TraceSink> sink_;
};

}  // namespace kivscsi

// A transport decorator that logs every command it passes on, at priority 1 on the logger
// "scsi.Trace":
//   "<device> CDB <cdb bytes in hex> -> <status as %04X> in <ms> ms"
// followed by ", residual <n>" when bytes were left untransferred and ", sense <hex>" when the
// device returned sense data. Nothing is formatted when priority 1 is not enabled.
#pragma once

#include <memory>
#include <string>

#include "scsi/Export.h"
#include "scsi/Transport.h"

namespace kivscsi {

inline constexpr const wchar_t* kTraceLoggerName = L"scsi.Trace";

class SCSI_API TracingTransport : public Transport {
public:
    // Takes ownership of `inner`. REQUIRES: inner != nullptr.
    TracingTransport(std::unique_ptr<Transport> inner, std::string deviceName);
    ScsiResponse send(const ScsiCommand& command) override;

private:
    std::unique_ptr<Transport> inner_;
    std::string deviceName_;
};

}  // namespace kivscsi

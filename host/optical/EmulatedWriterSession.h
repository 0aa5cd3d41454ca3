// An emulated writer set up as an emu: text says, registered under a device name for as long
// as the session lives. Faults the writer has no notion of (stale data after a flush, a drive
// that vanishes part way) are played by a thin target in front of it.
#pragma once

#include <memory>
#include <string>

#include "optical/EmulatedWriterText.h"
#include "sim/mmc/EmulatedWriter.h"

namespace host {

class FaultingWriterTarget;

class EmulatedWriterSession {
public:
    // Registers the writer under `name` with its disc (if any) in the tray and its faults
    // planted. The disc spins up in the writer's configured time.
    EmulatedWriterSession(const EmulatedWriterSetup& setup, std::string name);
    // Unregisters the name.
    ~EmulatedWriterSession();
    EmulatedWriterSession(const EmulatedWriterSession&) = delete;
    EmulatedWriterSession& operator=(const EmulatedWriterSession&) = delete;

    const std::string& name() const { return name_; }
    sim::mmc::EmulatedWriter& writer() { return *writer_; }
    // "VENDOR PRODUCT", as INQUIRY would give it.
    std::string model() const;

private:
    std::string name_;
    sim::mmc::WriterConfig config_;
    std::shared_ptr<sim::mmc::EmulatedWriter> writer_;
};

}  // namespace host

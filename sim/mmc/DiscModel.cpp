#include "sim/mmc/DiscModel.h"

namespace sim::mmc {

DiscModel discOf(MediaKind kind) {
    const MediaTraits& traits = traitsOf(kind);
    DiscModel model;
    model.kind = kind;
    model.profile = traits.profile;
    model.capacitySectors = traits.capacitySectors;
    if (traits.recording == Recording::ReadOnly) {
        model.status = DiscStatus::Complete;
        model.recordedSectors = traits.capacitySectors;
    }
    if (traits.family == MediaFamily::Bd) {
        model.manufacturerId = "SIMMED";
    } else if (traits.family != MediaFamily::Cd) {
        model.manufacturerId = "SIMMEDIA";
    }
    model.discId = traits.defaultDiscId;
    return model;
}

}  // namespace sim::mmc

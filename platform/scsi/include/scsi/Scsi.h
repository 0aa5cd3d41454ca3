// The whole SCSI command library: commands by family, answer decoders, statuses, transports.
#pragma once

#include "scsi/BlockCommands.h"
#include "scsi/ByteOrder.h"
#include "scsi/Decoders.h"
#include "scsi/DiscCommands.h"
#include "scsi/ModeCommands.h"
#include "scsi/RecordingCommands.h"
#include "scsi/ScsiPath.h"
#include "scsi/Sense.h"
#include "scsi/SgIoStatus.h"
#include "scsi/Status.h"
#include "scsi/Transport.h"
#include "scsi/UnitCommands.h"

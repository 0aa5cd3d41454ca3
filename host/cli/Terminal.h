// Whether drivediag writes to a person's terminal or to a pipe or file.
#pragma once

namespace host {

bool standardOutputIsTerminal();

}  // namespace host

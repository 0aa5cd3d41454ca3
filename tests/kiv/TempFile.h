// A file in the temporary directory for one test, removed again when the test ends.
#pragma once

#include <string>

#include "kiv/String.h"

namespace kivtest {

class TempFile {
public:
    // Creates a new file holding `bytes`; its name contains `hint`.
    TempFile(const std::string& hint, const std::string& bytes);
    ~TempFile();
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    const kiv::String& path() const { return path_; }
    // The file's whole contents now.
    std::string contents() const;

private:
    kiv::String path_;
};

}  // namespace kivtest

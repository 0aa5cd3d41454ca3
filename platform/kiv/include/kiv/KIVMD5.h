// KIVMD5: MD5 digests of files and byte strings, computed by the platform's maintained
// implementation (OpenSSL libcrypto on Linux, Windows CNG on Windows).
//
// A digest is returned as text: 32 lower-case hexadecimal characters, most significant byte
// first ("d41d8cd98f00b204e9800998ecf8427e" for no data).
#pragma once

#include "kiv/CString.h"
#include "kiv/Export.h"
#include "kiv/String.h"

class KIV_API KIVMD5 {
public:
    // Digest of every byte of the file `path`. False (and `digest` untouched) when the file
    // cannot be opened or read, or hashing fails.
    static bool calculateMD5HashFile(const kiv::String& path, kiv::CString& digest);
    // Digest of the text of `data`: its bytes up to the first zero byte, or all of them when
    // it holds none. False (and `digest` untouched) when hashing fails.
    static bool calculateMD5Hash(const kiv::CString& data, kiv::CString& digest);
};

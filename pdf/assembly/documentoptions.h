// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/outputfile.h"

#include <map>
#include <string>

namespace pdf {

/// What is done to a whole document after its pages are there.
struct DocumentOptions
{
    /// Entries of the document information by key ("/Title"), UTF-8; others stay as they are.
    std::map<std::string, std::string> information;
    std::string userPassword;  ///< UTF-8; empty: the document opens without being asked
    std::string ownerPassword; ///< UTF-8; empty while the other is set: nobody has it
    bool mayPrint = true;
    bool mayModify = true;
    bool mayCopy = true;
    bool mayAnnotate = true;

    [[nodiscard]] bool isEncrypting() const
    {
        return !userPassword.empty() || !ownerPassword.empty();
    }
};

/// Writes the document at `source`, which opens without a password, to `output` with the options
/// applied: information also in its XMP metadata, if it has any; AES-256 if there is a password,
/// with the permissions that the document has already and the options leave.
/// Throws Error: InputUnreadable, OutputUnwritable.
void applyOptions(const std::string &source, const DocumentOptions &options, OutputFile &output);

/// XMP metadata (UTF-8) with the information entries in place of its own; as it is when it is not
/// in a form that is understood.
[[nodiscard]] std::string xmpWithInformation(const std::string &xmp,
                                             const std::map<std::string, std::string> &information);

} // namespace pdf

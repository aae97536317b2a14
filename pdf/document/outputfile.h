// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <string_view>

namespace pdf {

/// A file that appears under its name only when it is complete. Until publish() the bytes lie in a
/// nameless file of the target folder, so a tool that is killed leaves neither half a result nor
/// litter. Where the file system knows no nameless files it is a hidden, named one, which stays
/// when the tool is killed until a later one removes it (abandonedoutputs.h): it is locked as long
/// as its process lives.
class OutputFile
{
public:
    /// Opens the nameless file in the folder of path. Throws Error(OutputUnwritable).
    explicit OutputFile(const std::string &path);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    /// Appends the bytes. Throws Error(OutputUnwritable), for example when the disk is full.
    void write(std::string_view bytes);
    /// Gives the file its name, in place of what has that name. Throws Error(OutputUnwritable).
    void publish();

private:
    [[noreturn]] void fail() const;
    void openNamed(const std::string &folder);
    bool tryNamed(const std::string &folder);
    void flush();

    std::string target;
    std::string temporaryName; ///< empty while the file has no name
    std::string pending;       ///< bytes not yet handed to the system
    int fd = -1;
};

/// Opens a nameless file in the folder for writing; -1 where there are none.
[[nodiscard]] int openNameless(const std::string &folder);
/// Whether a file may have that name while it is written.
[[nodiscard]] bool isTemporaryName(std::string_view name);

/// The folder in which the path names something, "." for a bare name.
[[nodiscard]] std::string folderOf(const std::string &path);

/// Removes what an earlier run left under the name of an output, so that nobody takes it for the
/// result of this run. Throws Error(OutputUnwritable) when something stays there.
void removeStaleOutput(const std::string &path);

/// Writes a complete small file: OutputFile, write, publish.
void writeOutputFile(const std::string &path, std::string_view bytes);

} // namespace pdf

// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "system/claimedfolder.h"

#include <ctime>
#include <optional>
#include <string>

/// How staging folders are recognised.
constexpr FolderKind stagingKind = {".sendrivo-staging-", ".sendrivo-staging"};

// What is in a staging folder.
constexpr const char *newDocuments = "new"; ///< written, but without their names so far
constexpr const char *oldDocuments = "old"; ///< files that were replaced, under their names

/// The beginning of the name of a staging folder of this system: what made a folder is told by its
/// host's name to people, by the number of the system's start to this program.
[[nodiscard]] std::string stagingNamePrefix();

/// Removes the staging folders in `parent` that belong to no process any more; files that were
/// replaced, but whose names nothing has, get them back. Of folders of this system a lock tells
/// that. Other systems' locks may be unknown here, and what they have not changed for a day before
/// `now` (by the clock of the file system) counts as abandoned; without `now`, nothing of theirs.
void removeAbandonedStaging(const std::string &parent, std::optional<std::time_t> now);

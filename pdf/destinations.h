// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document.h"
#include "pdf/objectcopier.h"

#include <map>
#include <string>

namespace pdf {

/// Copies destinations and actions (ISO 32000-1, 12.3.2 and 12.6) whose target page is in the new
/// document. Named destinations are resolved and become explicit, so the copied pages need no name
/// tree.
class DestinationCopier
{
public:
    DestinationCopier(Document &inputDocument, ObjectCopier &objectCopier)
        : document(inputDocument), copier(objectCopier)
    {
    }

    /// An explicit destination for the target, or null when it leads to a page outside or nowhere.
    [[nodiscard]] QPDFObjectHandle copyDestination(const QPDFObjectHandle &destination);
    /// The action with those that follow it, or null when it leads to a page outside.
    [[nodiscard]] QPDFObjectHandle copyAction(const QPDFObjectHandle &action);
    /// A dictionary of actions by trigger event (an /AA entry), null when none remains.
    [[nodiscard]] QPDFObjectHandle copyAdditionalActions(const QPDFObjectHandle &actions);

private:
    QPDFObjectHandle copyActionChain(QPDFObjectHandle action, int depth);
    QPDFObjectHandle copyFollowing(QPDFObjectHandle next, int depth);
    QPDFObjectHandle named(QPDFObjectHandle name);
    QPDFObjectHandle targetPage(QPDFObjectHandle page);

    Document &document;
    ObjectCopier &copier;
};

} // namespace pdf

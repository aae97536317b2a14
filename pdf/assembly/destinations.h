// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/keytree.h"
#include "pdf/assembly/objectcopier.h"
#include "pdf/document/document.h"

#include <map>
#include <string>

namespace pdf {

/// Copies destinations and actions (ISO 32000-1, 12.3.2 and 12.6) whose target page is in the new
/// document, and remembers which destinations they use by name. Pages must be mapped before.
class DestinationCopier
{
public:
    DestinationCopier(Document &inputDocument, ObjectCopier &objectCopier);

    /// The page of the target that the destination leads to, null when it leads to a page outside
    /// or nowhere.
    [[nodiscard]] QPDFObjectHandle targetOf(const QPDFObjectHandle &destination);
    /// Whether copyAction() would leave anything of the action.
    [[nodiscard]] bool isKept(const QPDFObjectHandle &action);

    /// The destination for the target, explicit or by name as it was, or null when it leads to a
    /// page outside or nowhere.
    [[nodiscard]] QPDFObjectHandle copyDestination(const QPDFObjectHandle &destination);
    /// The action with those that follow it; actions that lead to a page outside are left out.
    [[nodiscard]] QPDFObjectHandle copyAction(const QPDFObjectHandle &action);
    /// A dictionary of actions by trigger event (an /AA entry), null when none remains.
    [[nodiscard]] QPDFObjectHandle copyAdditionalActions(const QPDFObjectHandle &actions);

    /// The names used so far: the values of /Dests in the catalog and of /Dests in its /Names, each
    /// null when there are none.
    [[nodiscard]] QPDFObjectHandle usedNameDictionary() const;
    [[nodiscard]] QPDFObjectHandle usedNameTree() const;

private:
    using Used = std::map<std::string, QPDFObjectHandle>;

    bool leadsOutside(QPDFObjectHandle action);
    QPDFObjectHandle copyActionChain(QPDFObjectHandle action, int depth);
    QPDFObjectHandle copyWithFollowing(QPDFObjectHandle action, int depth);
    QPDFObjectHandle copyFollowing(QPDFObjectHandle next, int depth);
    QPDFObjectHandle explicitArray(QPDFObjectHandle destination);
    QPDFObjectHandle named(QPDFObjectHandle name);
    QPDFObjectHandle targetPage(QPDFObjectHandle page);

    Document &document;
    ObjectCopier &copier;
    KeyTree nameTree;
    std::map<QPDFObjGen, QPDFObjectHandle> chains; ///< copied actions that others follow
    Used usedNames;                                ///< in the name dictionary
    Used usedStrings;                              ///< in the name tree
};

} // namespace pdf

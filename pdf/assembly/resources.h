// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/objectcopier.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace pdf {

/// Finds out which entries of shared resource dictionaries (ISO 32000-1, 7.8.3) the copied contents
/// use, so that only those are copied: one dictionary often serves all pages and names the fonts
/// and images of all of them.
///
/// A dictionary that belongs to copied pages alone is copied as it is, unless it names images and
/// forms: those of other pages may be among them.
/// Where contents cannot be decoded, everything they could use counts as used.
class ResourceCopier
{
public:
    explicit ResourceCopier(ObjectCopier &objectCopier) : copier(objectCopier) {}

    /// Dictionaries that no page outside refers to, in order: as good as those in the page itself
    /// when they name nothing but fonts and the like. To be called before anything else.
    void setOwn(std::vector<QPDFObjGen> dictionaries) { unshared = std::move(dictionaries); }

    /// The resources of a page, its own or those of the page tree node that owns them.
    struct PageResources
    {
        QPDFObjectHandle dictionary;
        QPDFObjGen owner;
        bool isInherited = false;
    };

    /// What a form field states for its looks: a string of operators, and resources of its own.
    void addFieldDefaults(QPDFObjectHandle operators, QPDFObjectHandle resources);
    /// A page's contents, and everything that its annotations show: form XObjects, possibly in
    /// dictionaries.
    void addPage(const QPDFObjectHandle &contents, const PageResources &resources,
                 const std::vector<QPDFObjectHandle> &appearances);
    /// The form's default resources: all their fonts are used, and what fields added before name.
    void addFormDefaults(QPDFObjectHandle resources);

    /// To be called when everything is added and before anything is copied: from then on references
    /// to shared dictionaries lead to copies with the used entries.
    void mapShared();
    /// A copy of the form's default resources.
    [[nodiscard]] QPDFObjectHandle copyFormDefaults(const QPDFObjectHandle &resources);
    /// A copy of resources that stand directly in the page.
    [[nodiscard]] QPDFObjectHandle copyOwn(const QPDFObjectHandle &resources, QPDFObjGen page);
    /// A copy of inherited resources that stand directly in a page tree node, as an indirect
    /// object.
    [[nodiscard]] QPDFObjectHandle copyInherited(const QPDFObjectHandle &resources,
                                                 QPDFObjGen owner);

private:
    /// The object that holds a dictionary of resources by name, and the category when the object
    /// is the resource dictionary above it.
    using DictionaryId = std::pair<QPDFObjGen, std::string>;
    using Names = std::set<std::string>;

    struct Dictionary
    {
        QPDFObjectHandle resources;
        QPDFObjGen owner;
        bool isShared = false;
        bool hasShared = false; ///< dictionaries in it, if not itself
    };
    /// Where contents find what they name.
    struct Scope : Dictionary
    {
        /// Those of the page and the forms around. Contents with resources of their own should not
        /// need them, but some readers look there for what is missing.
        std::vector<Dictionary> around;
    };
    struct Contents
    {
        std::vector<QPDFObjectHandle> streams;
        Scope scope;
    };
    struct Usage
    {
        QPDFObjectHandle dictionary;
        Names names;
        bool isWhole = false;
    };

    [[nodiscard]] Scope scopeOf(QPDFObjectHandle resources, QPDFObjGen owner) const;
    void follow();
    void visit(const Contents &contents);
    void addAppearance(const QPDFObjectHandle &appearance, const Scope &scope);
    void visitAround(const Contents &contents, std::optional<Names> names);
    void useNamed(const Names &names, QPDFObjectHandle dictionary, const std::string &category,
                  const Scope &scope);
    void visitResource(QPDFObjectHandle resource, const Scope &scope);
    void visitStreams(std::vector<QPDFObjectHandle> streams, QPDFObjectHandle resources,
                      QPDFObjGen owner, const Scope &scope);
    Usage &usageOf(const QPDFObjectHandle &dictionary, QPDFObjGen owner,
                   const std::string &category);
    QPDFObjectHandle usedEntries(const Usage &usage);
    QPDFObjectHandle usedResources(QPDFObjectHandle resources, QPDFObjGen owner);

    ObjectCopier &copier;
    std::vector<QPDFObjGen> unshared;
    Names defaultNames; ///< in what fields state for their looks
    std::vector<Contents> waiting;
    std::set<std::vector<QPDFObjGen>> visited;
    std::map<DictionaryId, Usage> usages;
    std::map<QPDFObjGen, QPDFObjectHandle> sharedResources;
    std::map<QPDFObjGen, QPDFObjectHandle> inheritedCopies;
};

} // namespace pdf

// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>

namespace pdf {

enum class CharacterClass : unsigned char { Regular, Blank, Delimiter };

/// The class of each byte (ISO 32000-1, 7.2.2).
constexpr std::array<CharacterClass, 256> makeCharacterClasses()
{
    std::array<CharacterClass, 256> classes = {};
    for (const char c : {' ', '\n', '\r', '\t', '\f', '\0'})
        classes[static_cast<unsigned char>(c)] = CharacterClass::Blank;
    for (const char c : {'(', ')', '<', '>', '[', ']', '{', '}', '/', '%'})
        classes[static_cast<unsigned char>(c)] = CharacterClass::Delimiter;
    return classes;
}

inline constexpr std::array<CharacterClass, 256> characterClasses = makeCharacterClasses();

inline bool isBlank(char c)
{
    return characterClasses[static_cast<unsigned char>(c)] == CharacterClass::Blank;
}

inline bool isRegular(char c)
{
    return characterClasses[static_cast<unsigned char>(c)] == CharacterClass::Regular;
}

} // namespace pdf

// Tests of the translation of Qt's key events into the key table's chords.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/KeyEvents.h"

#include <gtest/gtest.h>

namespace kelvar::app
{
namespace
{

std::optional<KeyChord> Chord(int key, Qt::KeyboardModifiers modifiers, const QString& text = {})
{
    const QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    return ChordOfKeyEvent(event);
}

TEST(KeyEventsTest, LettersFunctionKeysAndModifiers)
{
    EXPECT_EQ(Chord(Qt::Key_T, Qt::NoModifier, "t"), (KeyChord{KeyCode::T, KeyMods::Plain}));
    EXPECT_EQ(Chord(Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier),
              (KeyChord{KeyCode::G, KeyMods::CtrlShift}));
    EXPECT_EQ(Chord(Qt::Key_F4, Qt::AltModifier), (KeyChord{KeyCode::F4, KeyMods::Alt}));
    EXPECT_EQ(Chord(Qt::Key_Backtab, Qt::ShiftModifier), (KeyChord{KeyCode::Tab, KeyMods::Shift}));
    EXPECT_EQ(Chord(Qt::Key_Return, Qt::ShiftModifier), (KeyChord{KeyCode::Enter, KeyMods::Shift}));
    EXPECT_FALSE(Chord(Qt::Key_Shift, Qt::ShiftModifier).has_value());
}

TEST(KeyEventsTest, TypedCharactersMatchHoweverTyped)
{
    EXPECT_EQ(Chord(Qt::Key_Exclam, Qt::ShiftModifier, "!"),
              (KeyChord{KeyCode::Exclamation, KeyMods::Plain}));
    EXPECT_EQ(Chord(Qt::Key_Colon, Qt::ShiftModifier, ":"),
              (KeyChord{KeyCode::Colon, KeyMods::Plain}));
    EXPECT_EQ(CommandOfKey(*Chord(Qt::Key_At, Qt::ShiftModifier, "@")), 498);
}

TEST(KeyEventsTest, BookmarkDigitsComeBackFromTheirShiftedCharacters)
{
    EXPECT_EQ(Chord(Qt::Key_ParenRight, Qt::AltModifier | Qt::ShiftModifier, ")"),
              (KeyChord{KeyCode::Digit0, KeyMods::AltShift}));
    EXPECT_EQ(CommandOfKey(*Chord(Qt::Key_Exclam, Qt::ControlModifier | Qt::ShiftModifier, "!")),
              7021);
    EXPECT_EQ(CommandOfKey(*Chord(Qt::Key_3, Qt::ControlModifier)), 4433);
}

TEST(KeyEventsTest, ZoomCharacters)
{
    const QKeyEvent plus(QEvent::KeyPress, Qt::Key_Plus, Qt::ShiftModifier, "+");
    EXPECT_EQ(CharacterOfKeyEvent(plus), '+');
    const QKeyEvent f1(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
    EXPECT_EQ(CharacterOfKeyEvent(f1), 0);
}

} // namespace
} // namespace kelvar::app

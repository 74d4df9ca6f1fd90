// Qt's key and mouse events in the editor's own terms.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/KeyEvents.h"

#include <array>
#include <utility>

namespace kelvar::app
{
namespace
{

// Keys without a character, Qt's and the editor's.
constexpr std::array<std::pair<int, KeyCode>, 30> NamedKeys = {{
    {Qt::Key_Tab, KeyCode::Tab},
    {Qt::Key_Backtab, KeyCode::Tab},
    {Qt::Key_Return, KeyCode::Enter},
    {Qt::Key_Enter, KeyCode::Enter},
    {Qt::Key_Insert, KeyCode::Insert},
    {Qt::Key_Delete, KeyCode::Delete},
    {Qt::Key_Home, KeyCode::Home},
    {Qt::Key_End, KeyCode::End},
    {Qt::Key_PageUp, KeyCode::PageUp},
    {Qt::Key_PageDown, KeyCode::PageDown},
    {Qt::Key_Left, KeyCode::Left},
    {Qt::Key_Up, KeyCode::Up},
    {Qt::Key_Right, KeyCode::Right},
    {Qt::Key_Down, KeyCode::Down},
    {Qt::Key_ScrollLock, KeyCode::ScrollLock},
    {Qt::Key_Pause, KeyCode::Pause},
    {Qt::Key_Super_L, KeyCode::Super},
    {Qt::Key_Meta, KeyCode::Super},
    {Qt::Key_Menu, KeyCode::Menu},
    {Qt::Key_Space, KeyCode::Space},
    {Qt::Key_Slash, KeyCode::Slash},
    {Qt::Key_Question, KeyCode::Slash},
    {Qt::Key_QuoteLeft, KeyCode::Tilde},
    {Qt::Key_AsciiTilde, KeyCode::Tilde},
    {Qt::Key_Escape, KeyCode::None},
    {Qt::Key_Shift, KeyCode::None},
    {Qt::Key_Control, KeyCode::None},
    {Qt::Key_Alt, KeyCode::None},
    {Qt::Key_AltGr, KeyCode::None},
    {Qt::Key_CapsLock, KeyCode::None},
}};

// With Ctrl or Alt held, Shift and a digit come from Qt as the digit's shifted character on a
// US keyboard; the bookmark keys (Alt+Shift+0, Ctrl+Shift+1 ...) want the digit.
constexpr std::string_view ShiftedDigits = ")!@#$%^&*(";

KeyMods ModsOf(Qt::KeyboardModifiers modifiers)
{
    const bool shift = modifiers.testFlag(Qt::ShiftModifier);
    const bool ctrl = modifiers.testFlag(Qt::ControlModifier);
    const bool alt = modifiers.testFlag(Qt::AltModifier);
    if (alt)
    {
        return shift ? KeyMods::AltShift : KeyMods::Alt;
    }
    if (ctrl)
    {
        return shift ? KeyMods::CtrlShift : KeyMods::Ctrl;
    }
    return shift ? KeyMods::Shift : KeyMods::Plain;
}

} // namespace

std::optional<KeyChord> ChordOfKeyEvent(const QKeyEvent& event)
{
    const int key = event.key();
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    const bool ctrlOrAlt =
        modifiers.testFlag(Qt::ControlModifier) || modifiers.testFlag(Qt::AltModifier);

    // The typed characters match however they were typed.
    const QString text = event.text();
    if (!ctrlOrAlt && text.size() == 1 && text[0].unicode() < 0x80)
    {
        const auto character = static_cast<KeyCode>(text[0].unicode());
        if (IsTypedCharacter(character))
        {
            return KeyChord{character, KeyMods::Plain};
        }
    }
    if (key == Qt::Key_Backtab)
    {
        return KeyChord{KeyCode::Tab, ModsOf(modifiers | Qt::ShiftModifier)};
    }
    for (const auto& [qtKey, code] : NamedKeys)
    {
        if (qtKey == key)
        {
            return code == KeyCode::None ? std::nullopt
                                         : std::optional(KeyChord{code, ModsOf(modifiers)});
        }
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12)
    {
        const auto code = static_cast<KeyCode>(static_cast<int>(KeyCode::F1) + key - Qt::Key_F1);
        return KeyChord{code, ModsOf(modifiers)};
    }
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9))
    {
        return KeyChord{static_cast<KeyCode>(key), ModsOf(modifiers)};
    }
    if (key > 0 && key < 0x80)
    {
        const std::size_t digit = ShiftedDigits.find(static_cast<char>(key));
        if (ctrlOrAlt && digit != std::string_view::npos)
        {
            return KeyChord{static_cast<KeyCode>('0' + static_cast<int>(digit)),
                            ModsOf(modifiers | Qt::ShiftModifier)};
        }
        return KeyChord{static_cast<KeyCode>(key), ModsOf(modifiers)};
    }
    return std::nullopt;
}

char CharacterOfKeyEvent(const QKeyEvent& event)
{
    const QString text = event.text();
    if (text.size() != 1 || text[0].unicode() >= 0x80 || text[0].unicode() < 0x20)
    {
        return 0;
    }
    return static_cast<char>(text[0].unicode());
}

int MouseModifiers(Qt::KeyboardModifiers modifiers)
{
    return (modifiers.testFlag(Qt::ShiftModifier) ? view::ModShift : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? view::ModCtrl : 0) |
           (modifiers.testFlag(Qt::AltModifier) ? view::ModAlt : 0);
}

view::MouseInput MouseInputOf(const QMouseEvent& event, view::MouseEventKind kind,
                              std::int64_t timeMs)
{
    view::MouseInput input;
    input.Kind = kind;
    input.Button = event.button() == Qt::LeftButton    ? view::MouseButton::Left
                   : event.button() == Qt::RightButton ? view::MouseButton::Right
                                                       : view::MouseButton::None;
    const QPoint position = event.position().toPoint();
    input.X = position.x();
    input.Y = position.y();
    input.Modifiers = MouseModifiers(event.modifiers());
    input.TimeMs = timeMs;
    return input;
}

view::MouseInput MouseInputOf(const QWheelEvent& event, std::int64_t timeMs)
{
    view::MouseInput input;
    input.Kind = view::MouseEventKind::Wheel;
    const QPoint position = event.position().toPoint();
    input.X = position.x();
    input.Y = position.y();
    input.Modifiers = MouseModifiers(event.modifiers());
    input.WheelDelta = event.angleDelta().y();
    input.TimeMs = timeMs;
    return input;
}

} // namespace kelvar::app

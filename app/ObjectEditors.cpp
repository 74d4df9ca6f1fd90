// The object editors' commands and the choices their buttons make through the Ui port.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ObjectEditors.h"

#include "app/BrowserLists.h"
#include "app/CommandHandlers.h"
#include "app/Commands.h"
#include "app/Modes.h"
#include "app/PaneTexts.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "app/TagCommands.h"
#include "game/GameState.h"
#include "game/Generalized.h"
#include "game/ThingMask.h"
#include "game/TypeLookup.h"
#include "game/TypeMenus.h"
#include "game/TypeRows.h"
#include "map/MapState.h"
#include "map/Selection.h"
#include "map/Undo.h"
#include "platform/Format.h"
#include "platform/Ui.h"
#include "wad/LumpName.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace kelvar::app
{
namespace
{

short Short(int value)
{
    return static_cast<short>(value);
}

void AskForRedraw()
{
    CommandRequests& requests = Shell().Requests;
    requests.RedrawMap = true;
    requests.RefreshInfoPanes = true;
    requests.RefreshStatus = true;
}

// Whether the editor open now took an undo step (undo may be switched off).
bool& EditorStepTaken()
{
    static bool taken = false;
    return taken;
}

// An editor on the map's level whose first change takes the undo step.
game::ObjectEditor EditorOn(int kind, std::vector<std::int32_t> objects)
{
    EditorStepTaken() = false;
    return game::ObjectEditor(map::Map().Level, kind, std::move(objects),
                              [] { EditorStepTaken() = map::SaveUndoStep() == 1; });
}

// An editor on the selection of `mode`, or on its highlighted object.
game::ObjectEditor EditorOnSelection(int mode)
{
    return EditorOn(map::KindOfMode(mode), map::SelectionOrHighlight(map::Map().Level, mode));
}

// The entries of a type menu that can be picked, with the texts ChooseEntry shows.
struct MenuChoice
{
    std::vector<game::TypeMenuEntry> Entries;
    std::vector<std::string> Texts;
};

MenuChoice Pickable(std::vector<game::TypeMenuEntry> entries)
{
    MenuChoice choice;
    for (game::TypeMenuEntry& entry : entries)
    {
        if (entry.Separator)
        {
            continue;
        }
        choice.Texts.push_back(entry.Text);
        choice.Entries.push_back(std::move(entry));
    }
    return choice;
}

std::optional<game::TypeMenuEntry> PickFrom(const std::string& caption, MenuChoice choice,
                                            int current = -1)
{
    if (choice.Entries.empty())
    {
        return std::nullopt;
    }
    const std::optional<int> picked = platform::TheUi().ChooseEntryAt(
        caption, choice.Texts, std::vector<bool>(choice.Texts.size(), true), current);
    if (!picked || *picked < 0 || static_cast<std::size_t>(*picked) >= choice.Entries.size())
    {
        return std::nullopt;
    }
    return choice.Entries[static_cast<std::size_t>(*picked)];
}

// The type menu of `kind`: a category, then a type of it. The menu starts on the category of
// `currentType`. A direct entry comes back as it is.
std::optional<game::TypeMenuEntry> PickType(int kind, const std::string& caption,
                                            std::uint32_t currentType)
{
    MenuChoice categories = Pickable(game::CategoryMenu(kind));
    const std::uint32_t heading = game::HeadingOfType(kind, currentType);
    const auto at = std::find_if(categories.Entries.begin(), categories.Entries.end(),
                                 [heading](const game::TypeMenuEntry& entry)
                                 { return heading != 0 && entry.Category == heading; });
    const int current =
        at == categories.Entries.end() ? -1 : static_cast<int>(at - categories.Entries.begin());
    const std::optional<game::TypeMenuEntry> category =
        PickFrom(caption, std::move(categories), current);
    if (!category || category->Category == 0)
    {
        return category;
    }
    MenuChoice types = Pickable(game::TypeSubMenu(kind, category->Category, HexTypeNumbers()));
    const auto type = std::find_if(types.Entries.begin(), types.Entries.end(),
                                   [currentType](const game::TypeMenuEntry& entry)
                                   { return entry.Type == currentType; });
    return PickFrom(category->Text, std::move(types),
                    type == types.Entries.end() ? -1
                                                : static_cast<int>(type - types.Entries.begin()));
}

std::optional<int> ParseNumber(std::string_view text, int base)
{
    while (!text.empty() && text.front() == ' ')
    {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == ' ')
    {
        text.remove_suffix(1);
    }
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size())
    {
        return std::nullopt;
    }
    return value;
}

bool CommitArguments(game::ObjectEditor& editor, const std::array<std::string, 5>& texts,
                     const std::array<std::uint8_t, 5>& shown)
{
    std::array<std::optional<std::uint8_t>, 5> values;
    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        values[i] = game::ParseArgument(texts[i]);
        if (!values[i])
        {
            platform::Message message;
            message.Lines = {"Argument values are from 0 to 255"};
            message.Icon = platform::MessageIcon::Exclamation;
            (void)platform::TheUi().Show(message);
            return false;
        }
    }
    const bool lines = editor.Kind() == map::KindLineDef;
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        // An argument left as shown stays as each object has it.
        if (*values[i] == shown[i])
        {
            continue;
        }
        const int index = static_cast<int>(i);
        (void)(lines ? editor.SetLineArg(index, *values[i])
                     : editor.SetThingArg(index, *values[i]));
    }
    return true;
}

std::vector<int> ThingNumbers(const map::LevelData& level, bool polyobjects)
{
    std::vector<int> numbers;
    for (const map::Thing& thing : level.Things)
    {
        if (polyobjects && game::ThingIsPolyStart(thing.Type))
        {
            numbers.push_back(thing.Angle);
        }
        else if (!polyobjects && thing.Tid > 0)
        {
            numbers.push_back(thing.Tid);
        }
    }
    return numbers;
}

// Line_SetIdentification gives a line its id in its first argument.
constexpr std::uint32_t LineSetIdentification = 121;

std::vector<int> LineIds(const map::LevelData& level)
{
    std::vector<int> numbers;
    for (const map::LineDef& line : level.LineDefs)
    {
        if ((line.Type & 0xFF) == LineSetIdentification && (line.Tag & 0xFF) > 0)
        {
            numbers.push_back(line.Tag & 0xFF);
        }
    }
    return numbers;
}

} // namespace

std::uint16_t FlagBitsOfSectors()
{
    const std::optional<game::SectorFlagBits> bits = game::CurrentSectorFlags();
    return bits ? bits->Mask : std::uint16_t{0};
}

bool HexenFormat()
{
    return wad::Wad().Game.Format == map::GameHexen;
}

bool HexTypeNumbers()
{
    return Shell().Chk.DecimalTypes == 0;
}

// --- Opening the editors -------------------------------------------------------------------

void ApplyThingMask()
{
    if (game::MaskShowsAll(game::TheThingMask()))
    {
        map::BoxThingFilter() = nullptr;
        return;
    }
    map::BoxThingFilter() = [](const map::Thing& thing)
    {
        return game::ThingPassesMask(thing, game::TheThingMask(),
                                     map::Map().Level.LevelLayout == map::LayoutHexen);
    };
}

bool EditObjects(int mode, std::vector<std::int32_t> objects)
{
    const int kind = map::KindOfMode(mode);
    if (kind == 0 || !Session().LevelLoaded)
    {
        return false;
    }
    game::ObjectEditor editor = EditorOn(kind, std::move(objects));
    if (editor.Empty())
    {
        return false;
    }
    if (Session().Hooks.ObjectEditor)
    {
        Session().Hooks.ObjectEditor(editor);
    }
    AskForRedraw();
    return true;
}

bool RevertEdits(const game::ObjectEditor& editor)
{
    if (editor.Changes() == 0 || !EditorStepTaken())
    {
        return false;
    }
    EditorStepTaken() = false;
    return map::UndoStep() == 1;
}

void EditObjectCommand(int /*number*/, CommandSource /*source*/)
{
    const int mode = EditMode();
    (void)EditObjects(mode, map::SelectionOrHighlight(map::Map().Level, mode));
}

void SideTextureCommand(int number, CommandSource /*source*/)
{
    const int side = number == CmdSide2Textures ? 2 : 1;
    game::ObjectEditor editor = EditorOnSelection(map::ModeLineDefs);
    if (editor.Empty() || !editor.AnySide(side))
    {
        platform::TheUi().Beep();
        return;
    }
    const std::optional<int> place =
        platform::TheUi().ChooseEntry(side == 1 ? "Wall texture side 1" : "Wall texture side 2",
                                      {"&Upper", "&Normal", "&Lower"}, {true, true, true});
    if (!place || *place < 0 || *place > 2)
    {
        return;
    }
    constexpr std::array<game::SidePart, 3> parts{game::SidePart::Upper, game::SidePart::Normal,
                                                  game::SidePart::Lower};
    if (ChooseSideTexture(editor, side, parts[static_cast<std::size_t>(*place)]))
    {
        AskForRedraw();
    }
}

void ThingMaskCommand(int /*number*/, CommandSource /*source*/)
{
    if (Session().Hooks.ThingMask && Session().Hooks.ThingMask())
    {
        ApplyThingMask();
        AskForRedraw();
    }
}

// --- Types ---------------------------------------------------------------------------------

bool EditGeneralizedType(game::ObjectEditor& editor)
{
    if (!Session().Hooks.GeneralizedLine || editor.Empty())
    {
        return false;
    }
    const auto current = static_cast<std::uint16_t>(editor.HeadLine().Type);
    const std::uint16_t start = game::CategoryOfType(current)
                                    ? current
                                    : game::CategoryRow(game::GeneralizedCategory::Floor).Base;
    const std::optional<std::uint16_t> type = Session().Hooks.GeneralizedLine(start);
    return type && editor.SetLineType(*type) > 0;
}

bool ChooseLineType(game::ObjectEditor& editor)
{
    if (editor.Empty())
    {
        return false;
    }
    const auto current = static_cast<std::uint16_t>(editor.HeadLine().Type);
    if (game::LineTypeIsGeneralized(current))
    {
        return EditGeneralizedType(editor);
    }
    const std::optional<game::TypeMenuEntry> entry =
        PickType(map::KindLineDef, "LineDef Type", editor.HeadLine().Type);
    if (!entry)
    {
        return false;
    }
    switch (entry->Command)
    {
    case game::MenuNormal:
        return editor.SetLineTypeWithArgs(0, {}, HexenFormat()) > 0;
    case game::MenuTypeNumber:
        return AskLineType(editor);
    case game::MenuGeneralized:
        return EditGeneralizedType(editor);
    case game::MenuArgs:
        return Session().Hooks.HexenArgs && Session().Hooks.HexenArgs(editor);
    case game::MenuSectorTag:
        return AskLineTag(editor);
    default:
        break;
    }
    std::array<std::uint8_t, 5> args = entry->Args;
    if (entry->Type == 12)
    {
        args[1] = game::LastDoorArguments()[0];
        args[2] = game::LastDoorArguments()[1];
    }
    return editor.SetLineTypeWithArgs(entry->Type, args, HexenFormat()) > 0;
}

bool AskLineType(game::ObjectEditor& editor)
{
    if (editor.Empty())
    {
        return false;
    }
    const int high = HexenFormat() ? 255 : 65535;
    const int current = std::min(static_cast<int>(editor.HeadLine().Type), high);
    std::optional<int> type;
    if (HexTypeNumbers())
    {
        // With the numbers shown in hexadecimal, the type is typed in hexadecimal too.
        const std::optional<std::string> text =
            platform::TheUi().AskText("LineDef Type", "LineDef Type (hexadecimal)",
                                      platform::Format("%04X", static_cast<unsigned>(current)));
        type = text ? ParseNumber(*text, 16) : std::nullopt;
        if (text && !type)
        {
            platform::TheUi().Beep();
        }
    }
    else
    {
        type = platform::TheUi().AskNumber("LineDef Type", "LineDef Type", current, 0, high);
    }
    if (!type || *type < 0 || *type > high)
    {
        return false;
    }
    return editor.SetLineType(static_cast<std::uint32_t>(*type)) > 0;
}

bool ChooseSectorType(game::ObjectEditor& editor)
{
    if (editor.Empty())
    {
        return false;
    }
    const std::optional<game::TypeMenuEntry> entry =
        PickType(map::KindSector, "Sector Type",
                 static_cast<std::uint16_t>(editor.HeadSector().Type & ~FlagBitsOfSectors()));
    if (!entry)
    {
        return false;
    }
    switch (entry->Command)
    {
    case game::MenuNormal:
        return editor.SetSectorField(game::SectorField::Type, 0) > 0;
    case game::MenuGeneralized:
        return Session().Hooks.SectorFlags && Session().Hooks.SectorFlags(editor);
    case game::MenuTypeNumber:
    {
        const std::optional<int> type = platform::TheUi().AskNumber(
            "Sector Type", "Sector Type", editor.HeadSector().Type, 0, 65535);
        return type && editor.SetSectorField(game::SectorField::Type, *type) > 0;
    }
    case game::MenuSectorTag:
    {
        const std::optional<int> tag = platform::TheUi().AskNumber(
            FreeNumberText(editor), "Sector Tag", editor.HeadSector().Tag, 0, 65535);
        return tag && editor.SetSectorField(game::SectorField::Tag, *tag) > 0;
    }
    default:
        break;
    }
    // A plain type keeps the Sector flags each Sector has.
    return editor.SetSectorType(static_cast<std::uint16_t>(entry->Type), FlagBitsOfSectors()) > 0;
}

bool ChooseThingType(game::ObjectEditor& editor)
{
    if (editor.Empty())
    {
        return false;
    }
    const std::optional<game::TypeMenuEntry> entry =
        PickType(map::KindThing, "Thing Type", editor.HeadThing().Type);
    if (!entry)
    {
        return false;
    }
    switch (entry->Command)
    {
    case game::MenuTypeNumber:
    {
        const std::optional<int> type = platform::TheUi().AskNumber(
            "Enter a Thing #", "Thing Type", editor.HeadThing().Type, 0, 65535);
        return type && editor.SetThingField(game::ThingField::Type, *type) > 0;
    }
    case game::MenuThingSpecial:
        return ChooseThingSpecial(editor);
    case game::MenuArgs:
        return Session().Hooks.HexenArgs && Session().Hooks.HexenArgs(editor);
    case game::MenuNormal:
    case game::MenuGeneralized:
    case game::MenuSectorTag:
        return false;
    default:
        return editor.SetThingField(game::ThingField::Type, static_cast<int>(entry->Type)) > 0;
    }
}

bool BrowseThingType(game::ObjectEditor& editor)
{
    if (editor.Empty())
    {
        return false;
    }
    const std::optional<BrowserItem> item =
        OpenBrowserItem(BrowseThings, game::ThingTypeName(editor.HeadThing().Type));
    if (!item || item->Number < 0)
    {
        return false;
    }
    return editor.SetThingField(game::ThingField::Type, item->Number) > 0;
}

bool ChooseThingSpecial(game::ObjectEditor& editor)
{
    if (editor.Empty())
    {
        return false;
    }
    const std::optional<game::TypeMenuEntry> entry =
        PickType(map::KindLineDef, "Thing Special", editor.HeadThing().Special);
    if (!entry || entry->Category != 0 || entry->Command < game::TypeMenuFirst || entry->Type > 255)
    {
        return false;
    }
    return editor.SetThingSpecialWithArgs(static_cast<std::uint8_t>(entry->Type), entry->Args) > 0;
}

std::string LineTypeButtonText(std::uint32_t type)
{
    return HexTypeNumbers() ? platform::Format("  &2.   %04X", static_cast<unsigned>(type))
                            : platform::Format("  &2.   %u", static_cast<unsigned>(type));
}

std::string LineTagButtonText()
{
    return HexenFormat() ? "&9. HEXEN\n    Args" : "&9. Sector\n    Tag";
}

// --- Tags and arguments --------------------------------------------------------------------

bool AskLineTag(game::ObjectEditor& editor)
{
    if (editor.Empty())
    {
        return false;
    }
    if (HexenFormat())
    {
        return Session().Hooks.HexenArgs && Session().Hooks.HexenArgs(editor);
    }
    const std::optional<int> tag = platform::TheUi().AskNumber(
        FreeNumberText(editor), "LineDef Tag", editor.HeadLine().Tag, 0, 65535);
    return tag && editor.SetLineTag(static_cast<std::uint16_t>(*tag)) > 0;
}

std::vector<std::string> LineArgumentLabels(std::uint32_t type)
{
    const game::LineTypeRow& row = game::LookupLineType(static_cast<std::uint16_t>(type), 0);
    std::vector<std::string> labels = game::ArgumentLabels(game::Text(row.Name));
    while (labels.size() < 5)
    {
        labels.push_back("Arg " + std::to_string(labels.size() + 1));
    }
    return labels;
}

std::array<std::uint8_t, 5> HeadLineArguments(const game::ObjectEditor& editor)
{
    const map::LineDef& line = editor.HeadLine();
    return {static_cast<std::uint8_t>(line.Tag & 0xFF), line.Args[0], line.Args[1], line.Args[2],
            line.Args[3]};
}

bool CommitLineArguments(game::ObjectEditor& editor, const std::array<std::string, 5>& texts)
{
    if (editor.Empty() || !CommitArguments(editor, texts, HeadLineArguments(editor)))
    {
        return false;
    }
    if ((editor.HeadLine().Type & 0xFF) == 12)
    {
        game::LastDoorArguments() = {editor.HeadLine().Args[0], editor.HeadLine().Args[1]};
    }
    return true;
}

bool CommitThingArguments(game::ObjectEditor& editor, const std::array<std::string, 5>& texts)
{
    return !editor.Empty() && CommitArguments(editor, texts, editor.HeadThing().Args);
}

std::string FreeNumberText(const game::ObjectEditor& editor)
{
    if (editor.Empty())
    {
        return {};
    }
    const map::LevelData& level = editor.Level();
    const bool hexen = HexenFormat();
    if (editor.Kind() == map::KindThing)
    {
        if (!hexen)
        {
            return {};
        }
        const bool poly = game::ThingIsPolyStart(editor.HeadThing().Type);
        const FreeNumbers free = FreeTagInfo(ThingNumbers(level, poly));
        return platform::Format(poly ? "PolyId free=%hd" : "TID free=%hd", Short(free.Free));
    }
    if (editor.Kind() == map::KindLineDef && hexen)
    {
        const std::string label = LineArgumentLabels(editor.HeadLine().Type).front();
        if (label.starts_with("Tid"))
        {
            const FreeNumbers free = FreeTagInfo(ThingNumbers(level, false));
            return platform::Format("Tid free=%hd last=%hd", Short(free.Free), Short(free.Last));
        }
        if (label.starts_with("Pol"))
        {
            const FreeNumbers free = FreeTagInfo(ThingNumbers(level, true));
            return platform::Format("PolyId free=%hd last=%hd", Short(free.Free), Short(free.Last));
        }
        if (label.starts_with("Tag"))
        {
            const FreeNumbers free = FreeTagInfo(TagsInUse(level, true));
            return platform::Format("Tag free=%hd last=%hd", Short(free.Free), Short(free.Last));
        }
        if (label.starts_with("Lineid"))
        {
            const FreeNumbers free = FreeTagInfo(LineIds(level));
            return platform::Format("Lineid free=%d last=%d", free.Free, free.Last);
        }
        return {};
    }
    const FreeNumbers free = FreeTagInfo(TagsInUse(level, hexen));
    return platform::Format("Free=%hd, Last=%hd", Short(free.Free), Short(free.Last));
}

// --- Textures ------------------------------------------------------------------------------

std::string TextureButtonText(char mnemonic, const std::string& name)
{
    const char letter[2] = {mnemonic, '\0'};
    return platform::Format(" &%s.  %-8s", letter, name.c_str());
}

bool ChooseSideTexture(game::ObjectEditor& editor, int side, game::SidePart part)
{
    if (editor.Empty() || !editor.AnySide(side))
    {
        return false;
    }
    std::string start;
    if (const map::SideDef* head = editor.HeadSide(side))
    {
        start = game::SideTexture(*head, part).Text();
    }
    const std::optional<std::string> picked = OpenBrowser(BrowseTextures, start);
    if (!picked)
    {
        return false;
    }
    return editor.SetSideTexture(side, part, map::TextureName::From(*picked)) > 0;
}

bool ChooseSectorFlat(game::ObjectEditor& editor, bool floor)
{
    if (editor.Empty())
    {
        return false;
    }
    const map::Sector& head = editor.HeadSector();
    const std::optional<std::string> picked =
        OpenBrowser(BrowseFlats, (floor ? head.FloorTexture : head.CeilingTexture).Text());
    if (!picked)
    {
        return false;
    }
    return editor.SetSectorTexture(floor, map::TextureName::From(wad::UpperText(*picked))) > 0;
}

// --- Flags ---------------------------------------------------------------------------------

bool EditRawFlags(game::ObjectEditor& editor)
{
    if (editor.Empty() || editor.Kind() == map::KindSector)
    {
        return false;
    }
    const bool lines = editor.Kind() == map::KindLineDef;
    const std::uint16_t old = lines ? editor.HeadLine().Flags : editor.HeadThing().Flags;
    const std::string shown = platform::Format("%04X", static_cast<unsigned>(old));
    const std::optional<std::string> text = platform::TheUi().AskText(
        "Edit Raw Flags", platform::Format("Old Flags (%04X)", static_cast<unsigned>(old)), shown);
    if (!text)
    {
        return false;
    }
    const std::optional<int> value = ParseNumber(*text, 16);
    if (!value || *value < 0 || *value > 0xFFFF)
    {
        platform::TheUi().Beep();
        return false;
    }
    const auto flags = static_cast<std::uint16_t>(*value);
    return (lines ? editor.SetLineFlags(flags) : editor.SetThingFlags(flags)) > 0;
}

int ApplySectorFlags(game::ObjectEditor& editor, std::uint16_t flags)
{
    const int changed = editor.SetSectorFlags(flags);
    if (changed == 0)
    {
        platform::Message message;
        message.Title = "Warning";
        message.Lines = {"! No flags changed !", "", "This is not a BOOM Sector type"};
        message.Icon = platform::MessageIcon::Exclamation;
        (void)platform::TheUi().Show(message);
    }
    return changed;
}

// --- Info pane keys ------------------------------------------------------------------------

int PaneTextureKey(int mode, const PanePlace& place, char key)
{
    if (!Session().LevelLoaded || (mode != map::ModeSectors && mode != map::ModeLineDefs))
    {
        return 0;
    }
    game::ObjectEditor editor = EditorOnSelection(mode);
    if (editor.Empty())
    {
        return 0;
    }
    const char upper = static_cast<char>(std::toupper(static_cast<unsigned char>(key)));
    map::TextureName name = map::NoTexture;
    int changed = 0;
    if (mode == map::ModeSectors)
    {
        const map::Sector& head = editor.HeadSector();
        name = upper == 'C'   ? head.CeilingTexture
               : upper == 'F' ? head.FloorTexture
                              : map::NoTexture;
        changed = editor.SetSectorTexture(place.Floor, name);
    }
    else
    {
        if (const map::SideDef* head = editor.HeadSide(place.Side))
        {
            name = upper == 'U'   ? head->UpperTexture
                   : upper == 'N' ? head->NormalTexture
                   : upper == 'L' ? head->LowerTexture
                                  : map::NoTexture;
        }
        changed = editor.SetSideTexture(place.Side, place.Part, name);
    }
    if (changed > 0)
    {
        AskForRedraw();
    }
    return changed;
}

std::optional<PanePlace> PanePlaceOfBox(int box)
{
    const view::InfoPane pane = InfoPaneTexts();
    if (box < 0 || static_cast<std::size_t>(box) >= pane.Textures.size())
    {
        return std::nullopt;
    }
    const view::TextureBox& texture = pane.Textures[static_cast<std::size_t>(box)];
    PanePlace place;
    place.Side = texture.Side;
    place.Part = texture.Label == "upper"   ? game::SidePart::Upper
                 : texture.Label == "lower" ? game::SidePart::Lower
                                            : game::SidePart::Normal;
    return place;
}

bool PaneClick(int mode, int line, int box)
{
    if (!Session().LevelLoaded || (mode != map::ModeSectors && mode != map::ModeLineDefs))
    {
        return false;
    }
    game::ObjectEditor editor = EditorOnSelection(mode);
    if (editor.Empty())
    {
        return false;
    }
    bool changed = false;
    if (mode == map::ModeLineDefs)
    {
        const std::optional<PanePlace> place = PanePlaceOfBox(box);
        changed = place && ChooseSideTexture(editor, place->Side, place->Part);
    }
    else
    {
        // The pane's lines come in pairs: a title, then its value.
        const auto ask = [&editor](const char* caption, game::SectorField field, int current)
        {
            const std::optional<int> value =
                platform::TheUi().AskNumber(caption, caption, current, -32768, 32767);
            return value && editor.SetSectorField(field, *value) > 0;
        };
        const map::Sector& head = editor.HeadSector();
        switch (line / 2)
        {
        case 1:
            changed = ask("Ceiling Height", game::SectorField::Ceiling, head.CeilingHeight);
            break;
        case 2:
            changed = ask("Floor Height", game::SectorField::Floor, head.FloorHeight);
            break;
        case 3:
            changed = ChooseSectorFlat(editor, false); // "Choose New Ceiling"
            break;
        case 4:
            changed = ChooseSectorFlat(editor, true); // "Choose New Floor"
            break;
        case 5:
            changed = ask("New Light Level", game::SectorField::Light, head.Light);
            break;
        default:
            break;
        }
    }
    if (changed)
    {
        AskForRedraw();
    }
    return changed;
}

} // namespace kelvar::app

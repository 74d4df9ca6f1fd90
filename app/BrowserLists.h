// The browsers' name lists, one for each variant, and the entry that opens a browser.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Browser.h"
#include "app/BrowserPictures.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::app
{

/// Builds the marker runs and the texture and flat catalogues again when the master directory
/// changed since they were last built for a browser (or never were).
void EnsureBrowserCatalogues();

/// The names a browser offers:
/// - Textures and Flats: the catalogues' lists in their order (flats in upper case);
/// - Levels: the level list;
/// - Pnames: the PNAMES entries in their order;
/// - Patches: the pictures between the patch markers, each name once, sorted;
/// - Sprites: the pictures between the sprite markers, in directory order, a PWAD's sprite
///   taking the place of the IWAD's of the same name;
/// - Things: the rows of the current game's Thing table.
/// With `externalOnly`, only what comes from PWADs (Things are never filtered).
std::vector<BrowserItem> BuildBrowserList(int variant, bool externalOnly);

/// Opens the browser `variant` with the cell of `startName` framed, and returns the name
/// picked, or nothing when the user closed it without one. Object editors call it in place
/// of a name list. The list lives only while the browser is open. Loads the game palette when
/// it isn't loaded ("Couldn't locate palette \"PLAYPAL\" entry" when it can't be).
std::optional<std::string> OpenBrowser(int variant, std::string_view startName);

/// The picture of a wall texture (BrowseTextures) or flat (BrowseFlats) by name, case ignored,
/// read as its browser cell would be: the previews of the object editors. Nothing drawn for a
/// name the catalogue doesn't have, or another variant.
BrowserPicture PreviewPicture(int variant, std::string_view name);
/// The picture of a Thing type: its sprite.
BrowserPicture ThingPreview(std::uint16_t type);

/// OpenBrowser that returns the whole row picked: a Thing's type is its Number.
std::optional<BrowserItem> OpenBrowserItem(int variant, std::string_view startName);

} // namespace kelvar::app

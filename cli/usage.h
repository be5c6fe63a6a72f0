#pragma once

#include <QString>

// The help texts of the tool and of each command, and its version line.
namespace Usage {

enum class Topic { Tool, Info, Sprites, SpritesExport, SpritesConvert, SpritesRender, Project, ProjectInfo, Animations,
                   AnimationsInfo, AnimationsConvert, AnimationsGif, AnimationsRender,
                   Check, Sounds, SoundsInfo, SoundsExport, SoundsPack, SpritesCheck,
                   Script };

QString text(Topic topic);
QString versionLine();

// How a command is called, for the hint after a usage error.
QString commandName(Topic topic);

} // namespace Usage

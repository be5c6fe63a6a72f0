#include "usage.h"

namespace Usage {

QString versionLine()
{
    return QStringLiteral("brawlforge-cli " BF_CLI_VERSION "\n");
}

QString commandName(Topic topic)
{
    switch (topic) {
    case Topic::Tool: return QStringLiteral("brawlforge-cli");
    case Topic::Info: return QStringLiteral("brawlforge-cli info");
    case Topic::Sprites: return QStringLiteral("brawlforge-cli sprites");
    case Topic::SpritesExport: return QStringLiteral("brawlforge-cli sprites export");
    case Topic::SpritesConvert: return QStringLiteral("brawlforge-cli sprites convert");
    case Topic::SpritesRender: return QStringLiteral("brawlforge-cli sprites render");
    case Topic::Project: return QStringLiteral("brawlforge-cli project");
    case Topic::ProjectInfo: return QStringLiteral("brawlforge-cli project info");
    case Topic::Animations: return QStringLiteral("brawlforge-cli animations");
    case Topic::AnimationsInfo: return QStringLiteral("brawlforge-cli animations info");
    case Topic::AnimationsConvert: return QStringLiteral("brawlforge-cli animations convert");
    case Topic::AnimationsGif: return QStringLiteral("brawlforge-cli animations gif");
    case Topic::AnimationsRender: return QStringLiteral("brawlforge-cli animations render");
    case Topic::Check: return QStringLiteral("brawlforge-cli check");
    case Topic::Sounds: return QStringLiteral("brawlforge-cli sounds");
    case Topic::SoundsInfo: return QStringLiteral("brawlforge-cli sounds info");
    case Topic::SoundsExport: return QStringLiteral("brawlforge-cli sounds export");
    case Topic::SoundsPack: return QStringLiteral("brawlforge-cli sounds pack");
        break;
    case Topic::SpritesCheck: return QStringLiteral("brawlforge-cli sprites check");
    case Topic::Script: return QStringLiteral("brawlforge-cli script");
    }
    return QString();
}

static const char exitCodes[] =
    "\n"
    "Exit codes:\n"
    "  0  done, nothing to report\n"
    "  1  done, but the file reported warnings or errors (on standard error,\n"
    "     as \"file(line): text\")\n"
    "  2  bad usage, an unreadable or unrecognised file, or a failed write\n";

QString text(Topic topic)
{
    QString body;
    switch (topic) {
    case Topic::Tool:
        body = QStringLiteral(
            "Usage: brawlforge-cli COMMAND [ARGUMENTS]\n"
            "\n"
            "Reads and writes the files of M.U.G.E.N. content the way Brawlforge does,\n"
            "for batch work and continuous integration.\n"
            "\n"
            "Commands:\n"
            "  info FILE [--json]                        what a sprite file (SFF), a sound\n"
            "                                            file (SND) or a definition file (DEF)\n"
            "                                            holds\n"
            "  sprites export FILE.sff OUTDIR [--character]\n"
            "                                            one PNG per sprite, and sprites.txt\n"
            "  sprites convert IN.sff OUT.sff --to 1.01|2.00|2.01 [--character]\n"
            "                                            saves a sprite file in another version\n"
            "  sprites render FILE.sff|FILE.def GROUP,NUMBER OUT.png [--palette G,N]\n"
            "                 [--zoom Z] [--stage]          one sprite drawn as the stage draws it\n"
            "  sprites check FILE.sff... [--json]        decodes every sprite and names those\n"
            "                                            that can't be decoded\n"
            "  project info FILE.def [--json]            opens a project as the program does\n"
            "                                            and lists its files and issues\n"
            "  animations info FILE.air|FILE.def [--json]\n"
            "                                            the actions, frames and boxes of an\n"
            "                                            animation file or of a DEF\n"
            "  animations convert IN.air OUT.air         rewrites animations in the program's\n"
            "                                            own layout\n"
            "  check FILE... [--json] [--mugen-version 1.0|1.1]\n"
            "                                            the syntax checker of the code\n"
            "                                            editors over text files\n"
            "  sounds info FILE.snd|FILE.def [--json]    the sounds of a sound file (SND)\n"
            "  sounds export FILE.snd OUTDIR             one WAV per sound and a SndMaker DEF\n"
            "  sounds pack IN.def|INDIR OUT.snd          a sound file from a definition or\n"
            "                                            a folder of GROUP-NUMBER.wav\n"
            "  script FILE.lua [--project FILE.def]... [-- ARGS]\n"
            "                                            runs a tool script on projects\n"
            "\n"
            "Options:\n"
            "  -h, --help     this text; after a command, the help of that command\n"
            "  --version      the version of the tool\n"
            "\n"
            "Progress is shown on standard error for long work when it is a terminal.\n");
        break;
    case Topic::Info:
        body = QStringLiteral(
            "Usage: brawlforge-cli info FILE [--json]\n"
            "\n"
            "For a sound file (SND): as 'brawlforge-cli sounds info'.\n"
            "For a sprite file (SFF 1.01, 2.00, 2.01): its version, the number of sprites,\n"
            "of linked sprites and of palettes, then one line per sprite with its index,\n"
            "group, number, axis, size, colour depth, stored format, link and palette.\n"
            "For a definition file (DEF): the project type, the engine version, the local\n"
            "coordinates and every file it names, with whether it exists.\n"
            "\n"
            "Options:\n"
            "  --json         print one JSON document instead of text\n");
        break;
    case Topic::Sprites:
        body = QStringLiteral(
            "Usage: brawlforge-cli sprites export FILE.sff OUTDIR [--character]\n"
            "       brawlforge-cli sprites convert IN.sff OUT.sff --to 1.01|2.00|2.01 [--character]\n"
            "       brawlforge-cli sprites render FILE.sff|FILE.def GROUP,NUMBER OUT.png [--palette G,N]\n"
            "                                     [--zoom Z] [--stage]\n"
            "       brawlforge-cli sprites check FILE.sff... [--json]\n"
            "\n"
            "See 'brawlforge-cli sprites export --help', 'brawlforge-cli sprites convert --help',\n"
            "'brawlforge-cli sprites render --help' and 'brawlforge-cli sprites check --help'.\n");
        break;
    case Topic::SpritesExport:
        body = QStringLiteral(
            "Usage: brawlforge-cli sprites export FILE.sff OUTDIR [--character]\n"
            "\n"
            "Writes one PNG per sprite into OUTDIR (made if missing), named\n"
            "<index>_<group>-<number>.png with the index in file order on 5 digits.\n"
            "An 8-bit sprite becomes a palette PNG whose pixel values are the sprite's own\n"
            "colour indices and whose colour table is its palette, alpha included;\n"
            "24- and 32-bit sprites become RGB and RGBA PNGs. A linked sprite is written\n"
            "as the image it shows.\n"
            "\n"
            "OUTDIR/sprites.txt lists one sprite per line, separated by tabs: index,\n"
            "group, number, x, y, the index it links to or '-', the palette's group and\n"
            "number ('-' without a palette), the PNG file name ('-' for an empty sprite).\n"
            "\n"
            "Options:\n"
            "  --character    load as a character's sprite file (shared palettes)\n");
        break;
    case Topic::SpritesConvert:
        body = QStringLiteral(
            "Usage: brawlforge-cli sprites convert IN.sff OUT.sff --to 1.01|2.00|2.01 [--character]\n"
            "\n"
            "Loads IN.sff and saves it as OUT.sff in the given version, with the rules of\n"
            "the program's own save: 1.01 and 2.00 hold 8-bit sprites only, so 24- and\n"
            "32-bit sprites are reduced to 256 colours. Sprites that will show other colours\n"
            "in OUT.sff (a reduction that loses colours, colours 1.01 can't give a sprite)\n"
            "are listed as a warning first, and the file is written all the same.\n"
            "OUT.sff is replaced only once it is completely written; IN.sff is never\n"
            "touched unless OUT.sff names it.\n"
            "\n"
            "Options:\n"
            "  --to VERSION   1.01 (M.U.G.E.N. Beta), 2.00 (M.U.G.E.N. 1.0) or\n"
            "                 2.01 (M.U.G.E.N. 1.1)\n"
            "  --character    load and save as a character's sprite file (shared palettes)\n");
        break;
    case Topic::SpritesRender:
        body = QStringLiteral(
            "Usage: brawlforge-cli sprites render FILE.sff|FILE.def GROUP,NUMBER OUT.png\n"
            "                                     [--palette G,N] [--zoom Z] [--stage]\n"
            "\n"
            "Draws sprite GROUP,NUMBER with the program's own stage code into OUT.png\n"
            "(RGBA). By default the sprite alone, on a transparent canvas of its own size\n"
            "times the zoom, colour 0 transparent. A DEF opens its project first, so that\n"
            "a character's sprites take the palette the program gives them.\n"
            "\n"
            "Options:\n"
            "  --palette G,N  draw with palette group G, number N of the file\n"
            "  --zoom Z       0.25, 0.5, 1 (the default), 2, 3, 4, 5, 6, 7 or 8\n"
            "  --stage        the stage as the editor shows it: background, rulers and\n"
            "                 the sprite cross, the axis in the middle\n");
        break;
    case Topic::Project:
        body = QStringLiteral(
            "Usage: brawlforge-cli project info FILE.def [--json]\n"
            "\n"
            "See 'brawlforge-cli project info --help'.\n");
        break;
    case Topic::ProjectInfo:
        body = QStringLiteral(
            "Usage: brawlforge-cli project info FILE.def [--json]\n"
            "\n"
            "Opens the project the way Brawlforge does (definitions, palettes, sprites,\n"
            "animations, sounds, commands, states) and prints its type, engine version,\n"
            "local coordinates, each slot's file with the number of items it holds, and\n"
            "every issue the load reported.\n"
            "\n"
            "Options:\n"
            "  --json         print one JSON document instead of text\n");
        break;
    case Topic::Animations:
        body = QStringLiteral(
            "Usage: brawlforge-cli animations info FILE.air|FILE.def [--json]\n"
            "       brawlforge-cli animations convert IN.air OUT.air\n"
            "       brawlforge-cli animations gif FILE.def ACTION OUT.gif\n"
            "       brawlforge-cli animations render FILE.def ACTION OUT.png [--frame K] [--boxes]\n"
            "\n"
            "See 'brawlforge-cli animations info --help',\n"
            "'brawlforge-cli animations convert --help', 'brawlforge-cli animations gif --help'\n"
            "and 'brawlforge-cli animations render --help'.\n");
        break;
    case Topic::AnimationsInfo:
        body = QStringLiteral(
            "Usage: brawlforge-cli animations info FILE.air|FILE.def [--json]\n"
            "\n"
            "Reads the actions the way Brawlforge does and lists them: number, frames,\n"
            "loop time in ticks (-1 when an element stays forever), the frame the loop\n"
            "starts at, and the name (the comment right above the header).\n"
            "A DEF that names an animation file (a character's) stands for that file;\n"
            "any other DEF (stage, storyboard, screen pack) holds its actions itself.\n"
            "\n"
            "With --json, one document:\n"
            "  {\"actions\": [{\"number\", \"name\", \"loopstart\": index or null,\n"
            "                \"frames\": [{\"group\", \"number\", \"x\", \"y\", \"time\",\n"
            "                            \"flip\": \"\"|\"H\"|\"V\"|\"HV\",\n"
            "                            \"trans\": \"\"|\"A\"|\"A1\"|\"S\"|\"AS<n>D<n>\",\n"
            "                            \"xscale\", \"yscale\", \"angle\": number or null,\n"
            "                            \"clsn1\", \"clsn2\": [[x1, y1, x2, y2], ...]}]}],\n"
            "   \"warnings\": [{\"line\", \"text\"}]}\n"
            "where clsn1 and clsn2 are the boxes that hold while the frame shows (its\n"
            "own, or the default in force), with the corners as written, and lines are\n"
            "counted from 1.\n"
            "\n"
            "Options:\n"
            "  --json         print one JSON document instead of text\n");
        break;
    case Topic::AnimationsGif:
        body = QStringLiteral(
            "Usage: brawlforge-cli animations gif FILE.def ACTION OUT.gif\n"
            "\n"
            "Opens the project and writes action number ACTION as an animated GIF, as the\n"
            "animations editor's \"Save as animated GIF\" does: every frame is its sprite\n"
            "on a common canvas, colour 0 transparent, each frame cleared after it shows;\n"
            "the delays are the frames' times at 60 ticks a second (a time of -1 shows\n"
            "for 655.35 seconds), and the loop starts at the Loopstart frame. Frames\n"
            "whose sprite is missing are left out. OUT.gif is replaced only once it is\n"
            "completely written.\n");
        break;
    case Topic::AnimationsRender:
        body = QStringLiteral(
            "Usage: brawlforge-cli animations render FILE.def ACTION OUT.png [--frame K] [--boxes]\n"
            "\n"
            "Opens the project and draws frame K (0 by default) of action number ACTION\n"
            "with the stage's own code into OUT.png: background, rulers, the animation\n"
            "cross, and the frame with its offset, flip and blending, at 1:1.\n"
            "\n"
            "Options:\n"
            "  --frame K      the frame to draw, from 0\n"
            "  --boxes        draw the collision boxes in force in that frame\n");
        break;
    case Topic::SpritesCheck:
        body = QStringLiteral(
            "Usage: brawlforge-cli sprites check FILE.sff... [--json]\n"
            "\n"
            "Decodes every sprite of each file in memory, on every core, and names each\n"
            "one whose data can't be decoded whole (cut short, unreadable, or claiming a\n"
            "size no sprite has) on standard error as \"file(index): text\", after the\n"
            "issues of the load. Then one line per file on standard output:\n"
            "  FILE: SFF VERSION, N sprites (L linked), all intact | B broken\n"
            "Nothing is written. A linked sprite shows the sprite it links to and is\n"
            "not named on its own.\n"
            "\n"
            "With --json, one document:\n"
            "  {\"files\": [{\"file\", \"version\", \"sprites\", \"linked\",\n"
            "              \"broken\": [{\"index\", \"group\", \"number\", \"reason\"}],\n"
            "              \"issues\": [{\"kind\", \"text\"}]}]}\n"
            "where a file that can't be used has \"error\" instead of the counts.\n"
            "\n"
            "Options:\n"
            "  --json         print one JSON document instead of text\n");
        break;
    case Topic::AnimationsConvert:
        body = QStringLiteral(
            "Usage: brawlforge-cli animations convert IN.air OUT.air\n"
            "\n"
            "Reads IN and writes its actions to OUT in the program's own layout: the\n"
            "Brawlforge header, each action between empty lines under a \"; name\" line,\n"
            "CR LF line ends, UTF-8 with a byte-order mark. Actions, frames and boxes\n"
            "stay exactly as read; comments and spacing don't.\n"
            "IN may be a stage's or a storyboard's DEF: with an OUT.def the DEF is\n"
            "written back in its own encoding with only its action blocks rewritten;\n"
            "with any other name its actions go to an AIR file. OUT is replaced only\n"
            "once it is completely written.\n");
        break;
    case Topic::Check:
        return QStringLiteral(
            "Usage: brawlforge-cli check FILE... [--json] [--mugen-version 1.0|1.1]\n"
            "\n"
            "Checks text files line by line with the syntax checker of the code editors:\n"
            "states (CNS, ST), commands (CMD), animations (AIR), and the DEF of a\n"
            "character, stage, storyboard or font with the sections of its type. Screen\n"
            "pack files (system, fight, select) get their section headers checked only.\n"
            "A character's DEF stands for itself and every text file it names (states,\n"
            "common states, commands, animations, storyboards), checked with the engine\n"
            "version its [Info] mugenversion gives.\n"
            "\n"
            "Each issue is printed on standard output as\n"
            "  file(line:first-last): error|warning: text\n"
            "with lines and columns counted from 1, as the editor shows them.\n"
            "With --json, one document:\n"
            "  {\"issues\": [{\"file\", \"line\", \"first\", \"last\", \"kind\", \"text\"}],\n"
            "   \"errors\": n, \"warnings\": n}\n"
            "\n"
            "Options:\n"
            "  --json                  print one JSON document instead of text\n"
            "  --mugen-version V       check as for engine version V (1.0 or 1.1), whatever\n"
            "                          the DEF says\n"
            "\n"
            "Exit codes:\n"
            "  0  no errors (warnings may have been printed)\n"
            "  1  the files hold errors\n"
            "  2  bad usage or a file that can't be read\n");
    case Topic::Sounds:
        body = QStringLiteral(
            "Usage: brawlforge-cli sounds info FILE.snd|FILE.def [--json]\n"
            "       brawlforge-cli sounds export FILE.snd OUTDIR\n"
            "       brawlforge-cli sounds pack IN.def|INDIR OUT.snd\n"
            "\n"
            "See 'brawlforge-cli sounds info --help', 'brawlforge-cli sounds export --help'\n"
            "and 'brawlforge-cli sounds pack --help'.\n");
        break;
    case Topic::SoundsInfo:
        body = QStringLiteral(
            "Usage: brawlforge-cli sounds info FILE.snd|FILE.def [--json]\n"
            "\n"
            "Reads a sound file (SND) the way Brawlforge does and lists its sounds: index,\n"
            "group, number, length in bytes, and for PCM WAV samples the channels, sample\n"
            "rate, bits per sample and duration in seconds. Samples that are no PCM WAV\n"
            "are kept as they are and shown by their kind. A character's DEF stands for\n"
            "the sound file it names. Damage the reader had to mend is reported as\n"
            "warnings.\n"
            "\n"
            "With --json, one document:\n"
            "  {\"file\", \"count\", \"sounds\": [{\"index\", \"group\", \"number\", \"length\",\n"
            "   \"format\": \"pcm\"|\"wav-<tag>\"|\"other\"|\"empty\", \"channels\", \"rate\",\n"
            "   \"bits\", \"duration\"}], \"warnings\": [\"file(line): text\"]}\n"
            "\n"
            "Options:\n"
            "  --json         print one JSON document instead of text\n");
        break;
    case Topic::SoundsExport:
        body = QStringLiteral(
            "Usage: brawlforge-cli sounds export FILE.snd OUTDIR\n"
            "\n"
            "Writes each sound's sample into OUTDIR (made if missing) as GROUP-NUMBER.wav,\n"
            "byte for byte as stored, and OUTDIR/<name>.def, the SndMaker script that\n"
            "lists them in file order. A second sound with the same group and number\n"
            "gets GROUP-NUMBER_2.wav and so on; sounds without a sample are left out.\n");
        break;
    case Topic::SoundsPack:
        body = QStringLiteral(
            "Usage: brawlforge-cli sounds pack IN.def|INDIR OUT.snd\n"
            "\n"
            "Makes a sound file from a SndMaker script, from the program's own export\n"
            "([SoundDef] sections with group, sample and file), or from a folder of\n"
            "GROUP-NUMBER.wav files taken in the order of group and number. Samples go in\n"
            "byte for byte. WAV files that can't be read are reported and left out.\n"
            "OUT.snd is replaced only once it is completely written; packing the same\n"
            "input twice gives the same file.\n");
        break;
    case Topic::Script:
        body = QStringLiteral(
            "Usage: brawlforge-cli script FILE.lua [--project FILE.def]... [-- ARGS]\n"
            "\n"
            "Opens each project the way Brawlforge does, runs the Lua script and then its\n"
            "function main, if it has one, as the Tools menu would. project() is the first\n"
            "project given, project(i) the one at index i (from 0). The words after \"--\"\n"
            "are the script's global table arg. What the script prints goes to standard\n"
            "output, one line per print; a Lua error to standard error.\n"
            "Nothing is saved unless the script saves (toFile). Dialogs are not\n"
            "available: a script that makes one stops with an error.\n"
            "\n"
            "Options:\n"
            "  --project FILE.def   a project for the script; may be given again\n");
        break;
    }
    return body + QLatin1String(exitCodes);
}

} // namespace Usage

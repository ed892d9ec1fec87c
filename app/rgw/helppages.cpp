#include "app/rgw/helppages.h"

#include "app/rgw/wording.h"

namespace vuk::app {

namespace {

// Every text below goes in through EscapeHtml; only the markup is literal.
std::string Page(const std::string& title, const std::string& body) {
  return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" + EscapeHtml(title) +
         "</title>\n<style>\n"
         "body { font-family: sans-serif; max-width: 60em; margin: 1em auto; padding: 0 1em; line-height: 1.4; }\n"
         "table { border-collapse: collapse; margin: 0.5em 0; }\n"
         "th, td { border: 1px solid #bbb; padding: 0.2em 0.5em; text-align: left; vertical-align: top; }\n"
         "tr.group th { background: #e8eef4; }\n"
         ".meta { color: #555; }\n"
         "</style>\n</head>\n<body>\n" +
         body + "</body>\n</html>\n";
}

std::string Element(const char* tag, const std::string& text) {
  return std::string("<") + tag + ">" + EscapeHtml(text) + "</" + tag + ">";
}

std::string Row(const std::vector<std::string>& cells) {
  std::string row = "<tr>";
  for (const std::string& cell : cells) row += Element("td", cell);
  return row + "</tr>\n";
}

std::string Header(const std::vector<std::string>& cells) {
  std::string row = "<tr>";
  for (const std::string& cell : cells) row += Element("th", cell);
  return row + "</tr>\n";
}

std::string Channels(const ToolFacts& tool) {
  if (tool.channels.empty()) return "<p>This tool has no input channels.</p>\n";
  std::string table = "<table>\n" + Header({"Channel", "Controls that fit", "Bound when made"});
  for (const ChannelFacts& channel : tool.channels) table += Row({channel.name, channel.controls, channel.binding});
  return table + "</table>\n";
}

std::string Settings(const ToolFacts& tool) {
  if (tool.settings.empty()) return "<p>This tool has no settings.</p>\n";
  std::string table = "<table>\n" + Header({"Setting", "Default", "Takes", "Help"});
  for (const SettingFacts& setting : tool.settings) {
    const std::string indent = "padding-left: " + std::to_string(8 + 24 * setting.depth) + "px";
    if (setting.group) {
      table += "<tr class=\"group\"><th colspan=\"4\" style=\"" + indent + "\">" + EscapeHtml(setting.label) +
               (setting.help.empty() ? "" : ": " + EscapeHtml(setting.help)) + "</th></tr>\n";
    } else {
      table += "<tr><td style=\"" + indent + "\">" + EscapeHtml(setting.label) + "</td>" + Element("td", setting.value) +
               Element("td", setting.range) + Element("td", setting.help) + "</tr>\n";
    }
  }
  return table + "</table>\n";
}

// The guide to the desktop app, as it works.
const char* const kGuide[][2] = {
    {"Start",
     "Run rgw gui, or rgw gui FILE to open a glTF scene (.gltf or .glb). The window shows the 3D viewport, the "
     "Rigworks panel (the tools), the outliner of the scene's nodes, the timeline and a log pane. View > Rigworks "
     "panel brings the panel back; View > Look through shows the scene from the orbit or through any camera. In "
     "the orbit the left mouse button turns the view, the middle one (or Shift and the left) moves it and the wheel "
     "zooms; View > Frame selected (F) brings the node chosen in the outliner into view, Frame all (Home) the "
     "whole scene."},
    {"Make a tool",
     "In the Rigworks panel, click and hold Vehicles, Cameras, Accessories or Templates to open the list of those "
     "tools, and choose one; the menus Main > Create Vehicle tool, Create Camera tool, Create Accessory tool and "
     "Create Template hold the same lists. The tool appears in the tool tree with its nodes in the scene. Create "
     "New Group makes a group in the tree: drag tools onto it to keep them together. Only the checked tools take "
     "part in a recording or a resimulation. Config (selected), or Tool > Configure..., opens the tool's settings "
     "with its configuration profiles (Load, Save, Start Profile for new tools of its kind, Rename, Delete, "
     "Import, Export). Main > Browse... loads a pre-rigged model (.prm), Main > Save selected... writes one."},
    {"Link its nodes to the scene",
     "A tool moves its nodes; the scene's objects follow them when they hang below. In the outliner a tool's node "
     "reads like Car_Body (4WheelerExt_01). Choose it, choose the scene node in the box beside Link below, and "
     "press Link below: the tool node hangs below that node where it stands. Unlink puts a node back at the top "
     "of the scene. Each tool's page below lists its nodes."},
    {"Bind its channels",
     "Input (selected), or Tool > Inputs..., opens the Input Settings window. Choose a channel, press Detect... and "
     "move the control that should drive it (a key, a stick, a button); Clear unbinds it. Dead zone ignores small "
     "movements around the rest position, Exponent bends the response (above 1, finer near the centre), Multiplier "
     "and Offset scale and shift it; the graph shows the response. Input profiles keep a whole set of bindings "
     "under a name: Load, Save and Delete them at the top."},
    {"Record",
     "Press Record (the checked tools take part). A countdown over the viewport comes first (Main > "
     "Preferences..., Start countdown time; 3 s unless changed). Then scene time runs with the wall clock and the "
     "tools write keys on their nodes every frame. Slow motion step 1, 2 or 3 records at one half, a quarter or an "
     "eighth of real speed, for a finer performance. While a take is recorded every key goes to the tools' "
     "channels, not to shortcuts; only Control-Z works: it throws the take away and starts it again. Press Record "
     "again to stop; at the end of the time range the take stops unless Expand timeline at its end is checked."},
    {"Resimulate",
     "The raw input of every take is kept. Change a tool's settings and press Resimulate: the checked tools are "
     "simulated again from their takes, faster than real time and without the devices. With Resimulate from the "
     "first frame checked it starts at the first frame of the time range."},
    {"Punch in",
     "Record > Punch in... lists the channels of the checked tools. Check those the next takes should record "
     "anew; the others play back from the kept take. The status bar says Punching in and the channels. With none "
     "checked, a take records every channel again."},
    {"Recover an unfinished take",
     "While a take is recorded, its raw input goes to a journal beside the scene (FILE.rgwtake; in the user folder "
     "for a scene never saved), kept until the scene is saved. When the program was cut short, opening the scene "
     "again asks whether to recover the unfinished take: Yes brings it back into the tools and simulates them "
     "over it. Save to keep it."},
    {"Save",
     "File > Save and Save As... write the scene as glTF with the tools, their settings and their takes; "
     "File > Open... reads it back with its tools. Unplug (selected) and Unplug all turn tools' animation into "
     "plain keys that need no tool. Edit > Undo and Redo undo scene changes."}};

}  // namespace

std::string EscapeHtml(const std::string& text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&': escaped += "&amp;"; break;
      case '<': escaped += "&lt;"; break;
      case '>': escaped += "&gt;"; break;
      case '"': escaped += "&quot;"; break;
      default: escaped += c;
    }
  }
  return escaped;
}

std::string ToolPage(const ToolFacts& tool) {
  std::string body = "<p><a href=\"index.html\">Rigworks help</a></p>\n" + Element("h1", tool.title) + "\n" +
                     "<p class=\"meta\">" + EscapeHtml(tool.categories + " tool " + tool.name) + "</p>\n";
  if (!tool.description.empty()) body += Element("p", tool.description) + "\n";
  if (!tool.credits.empty()) body += Element("p", "Credits: " + tool.credits) + "\n";
  body += Element("h2", "Nodes") + "\n" +
          Element("p", "Link these nodes to scene objects in the outliner: " + Listed(tool.nodes) + ".") + "\n";
  body += Element("h2", "Input channels") + "\n" + Channels(tool);
  body += Element("h2", "Settings") + "\n" +
          Element("p", "The configuration window's page, in its order and groups, with the values of a new tool.") +
          "\n" + Settings(tool);
  body += Element("h2", "Profiles") + "\n" + Element("p", "Configuration profiles: " + Listed(tool.configProfiles)) +
          "\n" + Element("p", "Input profiles: " + Listed(tool.inputProfiles)) + "\n";
  return Page(tool.title + " - Rigworks help", body);
}

std::string IndexPage(const std::vector<ToolFacts>& tools, const std::string& version) {
  std::string body = Element("h1", "Rigworks help") + "\n" +
                     Element("p", "Rigworks " + version + ": real-time performance rigs for animators. You make a "
                                  "tool, link its nodes to scene objects, bind its input channels to a gamepad, "
                                  "joystick, tablet or the keyboard, and record: the tool simulates frame by frame "
                                  "and writes keys on its nodes.") +
                     "\n";
  for (const auto& section : kGuide) body += Element("h2", section[0]) + "\n" + Element("p", section[1]) + "\n";
  body += Element("h2", "The tools") + "\n<table>\n" + Header({"Tool", "Category", "What it does"});
  for (const ToolFacts& tool : tools) {
    body += "<tr><td><a href=\"" + EscapeHtml(tool.helpFileName) + "\">" + EscapeHtml(tool.title) + "</a></td>" +
            Element("td", tool.categories) + Element("td", tool.description) + "</tr>\n";
  }
  return Page("Rigworks help", body + "</table>\n");
}

}  // namespace vuk::app

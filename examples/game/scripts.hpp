// The scripts of the game, by file name.
#pragma once

#include <map>
#include <string>

// clang-format off
inline const std::map<std::string, std::string> scripts = {

{"guard.vrs", R"(
// Stands at the gate until the alarm, then runs for a while.
speed = 0;
on_frame(frame) { move(speed); }
score(bonus) { position() + bonus }

wait_for("alarm");
speed = 3;
sleep(100);
speed = 0;
)"},

{"farmer.vrs", R"(
// Walks to the field until evening.
speed = 1;
on_frame(frame) { move(speed); }
score(bonus) { position() + bonus }

wait_for("evening");
speed = 0;
)"},

{"ringer.vrs", R"(
on_frame(frame) { }
score(bonus) { bonus }

sleep(80);
say("rings the bell");
event("alarm");
sleep(120);
say("rings the bell again");
event("evening");
sleep(86400000);
say("rings the bell next day");
event("evening");
)"},

{"poet.vrs", R"(
on_frame(frame) { move(1); }
score(bonus) { position() + bonus }

sleep(40);
say("buys a drink");
pay(5, "for wine");
say("recites");
)"},

};

// What is made of farmer.vrs while the game runs: first with a bracket forgotten, then well.
inline const char* const farmer_broken = R"(
speed = 2;
on_frame(frame) { move(speed; }
)";
inline const char* const farmer_mended = R"(
// Runs to the field until evening.
speed = 2;
on_frame(frame) { move(speed); }
score(bonus) { position() + bonus }

wait_for("evening");
speed = 0;
)";
// clang-format on

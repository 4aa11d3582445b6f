#pragma once

#include <string>

// How much of what a photograph knows goes into the files that are made of it.
enum class MetadataChoice
{
    Keep,
    Private, // without place, owner, serial numbers and the notes of the camera's maker
    None,    // the colour profile only, without which the colours would be others
};

// What is true of a file that is being written, whatever the photograph said that it was made of.
struct ResultFacts
{
    int width = 0, height = 0; // pixels
    MetadataChoice choice = MetadataChoice::Keep;
    std::string software;
    std::string dateTime; // "YYYY:MM:DD HH:MM:SS", local time
    std::string zone;     // what that is ahead of Greenwich: "+01:00"
};

// With this program's name and the time that it is now.
ResultFacts FactsOfResult(int width, int height, MetadataChoice choice);

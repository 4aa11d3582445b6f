#pragma once

// The commands that start tools: questions, checks and messages up to the point where the tool's
// own window opens.

void StartMultiImage();
void StartSingleImage();
void StartDaylightUp();
void StartDaylightDown();
void StartSmartContrast();
void StartToneMapping();

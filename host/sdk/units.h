#pragma once

// Length of one system unit. Code 5 asks for metres.
double GetMasterScale(int unitCode);

int GetTicksPerFrame();
int GetFrameRate();  // frames per second

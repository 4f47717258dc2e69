#pragma once

// Numbers of the library's resources; read by the resource compiler too, so macros only.
#define ORV_DIALOG_ABOUT 101
#define ORV_ABOUT_OK 1002

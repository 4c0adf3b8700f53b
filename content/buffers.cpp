// content/buffers.cpp: the scratch buffers.
#include "content/buffers.h"

char Buffer1[kBufferBytes];
char Buffer2[kBufferBytes];
char Buffer3[kBuffer3Bytes];
char Buffer4[kBufferBytes];
char Buffer5[kBufferBytes];
char Buffer6[kBufferBytes];
char Buffer7[kBufferBytes];
char FileBuffer[kBufferBytes];
uint16_t wBuffer[kWideItemLimit / 2 + 1];

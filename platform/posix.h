// platform/posix.h: the C library and POSIX calls that the add-in makes.
// fopen, fgets, fclose, remove, rename, stat, mkdir and system, by their standard contracts; paths are
// in the native character set (UTF-8), sizes in bytes.
#pragma once

#include <strings.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

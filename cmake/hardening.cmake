# What the program reads comes from strangers: checks that cost next to nothing, for what is installed.
set(TORVIK_HARDENING "")
if(NOT TORVIK_SANITIZE AND NOT APPLE)
  set(TORVIK_HARDENING -fstack-protector-strong -fstack-clash-protection)
  add_link_options(-Wl,-z,relro,-z,now)
endif()

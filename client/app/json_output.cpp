// client/app/json_output.cpp: JSON as the program prints it.
#include "client/app/json_output.h"

#include "client/app/terminal_text.h"

namespace pavex {

std::string TextOfJson(const nlohmann::ordered_json& json, int indent)
{
    return EscapeUnprintable(json.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace));
}

}  // namespace pavex

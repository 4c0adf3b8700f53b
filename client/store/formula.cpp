// client/store/formula.cpp: formulas: Lua expressions over the items of a note.
// An item is a variable of its name, `_ENV["$Name"]` when the name is none.  Text is a string, a number a
// number, a time its text form, rich text its plain text; what has several values is a table that joins
// itself with ", " under `..`.  An absent item is an empty string.
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "client/store/charset.h"
#include "client/store/handle_table.h"
#include "client/store/item_view.h"
#include "client/store/lua_state.h"
#include "client/store/richtext.h"
#include "client/store/value_text.h"
#include "platform/store.h"

namespace pavex {

namespace {

constexpr size_t kMostRichText = size_t{64} * 1024;  // bytes of it that a formula sees
constexpr size_t kMostEntry = 65535;                 // bytes of a text list's entry
constexpr const char* kListType = "list";

// Line breaks are NUL bytes in values and "\n" in formulas.
std::string LuaText(std::string_view scs)
{
    std::string utf8 = Utf8FromScs(scs);
    std::replace(utf8.begin(), utf8.end(), '\0', '\n');
    return utf8;
}

std::string ItemText(std::string_view utf8)
{
    std::string scs = ScsFromUtf8(utf8);
    std::replace(scs.begin(), scs.end(), '\n', '\0');
    return scs;
}

std::string PlainText(std::string_view records)
{
    std::string text;
    VisitPlainText(records, [&text](std::string_view piece, bool last) {
        text += piece.substr(0, kMostRichText - text.size());
        if (last && text.size() < kMostRichText)
            text += '\n';
        return text.size() < kMostRichText;
    });
    text.resize(ScsPrefix(text, text.find_last_not_of('\n') + 1));
    return text;
}

// An item as Lua sees it; made before Lua is called, since an error there unwinds no objects.
struct Operand {
    std::vector<std::string> texts;
    std::vector<double> numbers;  // in place of texts
};

void ReadOperand(const ItemView& item, Operand* operand)
{
    operand->numbers = ReadNumbers(item.type, item.value);
    std::vector<std::string_view> entries;
    if (item.type == kTypeTextList && ReadTextList(item.value, &entries)) {
        for (const std::string_view entry : entries)
            operand->texts.push_back(LuaText(entry));
    } else if (item.type == kTypeRichText) {
        operand->texts.push_back(LuaText(PlainText(item.value)));
    } else if (item.type == kTypeTime || item.type == kTypeTimeRange) {
        for (const TIMEDATE& time : ReadTimes(item.type, item.value)) {
            const void* const bytes = &time;
            operand->texts.push_back(
                TextOfValue(kTypeTime, {static_cast<const char*>(bytes), sizeof time}, std::string_view()));
        }
    } else if (item.type == kTypeText) {
        operand->texts.push_back(LuaText(item.value));
    }
}

class Formula {
public:
    Formula() = default;

    // Compiles; 594 when it is no expression, 592 without memory.
    STATUS Compile(const std::string& utf8);
    STATUS Evaluate(NOTEHANDLE note);
    const std::string& Result() const { return result_; }

private:
    static int Load(lua_State* lua);
    static int LookUp(lua_State* lua);
    static int Run(lua_State* lua);
    static int Concatenate(lua_State* lua);
    void PushOperand(lua_State* lua) const;
    bool TakeResult(lua_State* lua);

    LuaState lua_;
    int function_ = LUA_NOREF;
    NOTEHANDLE note_ = 0;
    Operand operand_;
    std::string result_;
};

STATUS Formula::Compile(const std::string& utf8)
{
    lua_State* const lua = lua_.Get();
    if (lua == nullptr)
        return kStatusNoMemory;
    std::string source = "return " + utf8 + "\n";
    lua_pushcfunction(lua, Load);
    lua_pushlightuserdata(lua, this);
    lua_pushlightuserdata(lua, &source);
    return lua_.Call(2, 0) ? kStatusOk : kStatusFormulaFailed;
}

// Called with the formula (this object) and its source; text only, since compiled code could break the state.
int Formula::Load(lua_State* lua)
{
    auto* const formula = static_cast<Formula*>(lua_touserdata(lua, 1));
    const auto* const source = static_cast<const std::string*>(lua_touserdata(lua, 2));
    if (luaL_loadbufferx(lua, source->data(), source->size(), "formula", "t") != LUA_OK)
        return lua_error(lua);
    formula->function_ = luaL_ref(lua, LUA_REGISTRYINDEX);
    return 0;
}

// __index of a run's variables: the item of that name.
int Formula::LookUp(lua_State* lua)
{
    auto* const formula = static_cast<Formula*>(lua_touserdata(lua, lua_upvalueindex(1)));
    size_t length = 0;
    const char* const name = luaL_checklstring(lua, 2, &length);
    bool failed = false;
    try {
        formula->operand_ = {};
        ItemView item;
        if (ViewItem(formula->note_, {name, length}, &item) == kStatusOk)
            ReadOperand(item, &formula->operand_);
    } catch (const std::bad_alloc&) {
        failed = true;
    }
    if (failed)
        return luaL_error(lua, "no memory for an item");
    formula->PushOperand(lua);
    return 1;
}

void Formula::PushOperand(lua_State* lua) const
{
    const auto pushNumber = [lua](double number) {
        if (number == std::trunc(number) && std::fabs(number) < 1e15)
            lua_pushinteger(lua, static_cast<lua_Integer>(number));  // prints without ".0"
        else
            lua_pushnumber(lua, number);
    };
    const std::vector<double>& numbers = operand_.numbers;
    const std::vector<std::string>& texts = operand_.texts;
    const size_t count = std::max(numbers.size(), texts.size());
    if (count == 0) {
        lua_pushstring(lua, "");
        return;
    }
    if (count > 1)
        lua_createtable(lua, static_cast<int>(count), 0);
    for (size_t i = 0; i < count; ++i) {
        if (!numbers.empty())
            pushNumber(numbers[i]);
        else
            lua_pushlstring(lua, texts[i].data(), texts[i].size());
        if (count > 1)
            lua_rawseti(lua, -2, static_cast<lua_Integer>(i) + 1);
    }
    if (count > 1)
        luaL_setmetatable(lua, kListType);
}

// "..": a list is its values with ", " between.
int Formula::Concatenate(lua_State* lua)
{
    luaL_Buffer joined;
    luaL_buffinit(lua, &joined);
    for (int side = 1; side <= 2; ++side) {
        if (!lua_istable(lua, side)) {
            luaL_checkstring(lua, side);
            lua_pushvalue(lua, side);
            luaL_addvalue(&joined);
            continue;
        }
        const lua_Unsigned count = lua_rawlen(lua, side);
        for (lua_Unsigned i = 1; i <= count; ++i) {
            if (i > 1)
                luaL_addstring(&joined, ", ");
            lua_rawgeti(lua, side, static_cast<lua_Integer>(i));
            luaL_checkstring(lua, -1);
            luaL_addvalue(&joined);
        }
    }
    luaL_pushresult(&joined);
    return 1;
}

// Called with the formula (this object) and its function: gives the function variables of its own, so that
// nothing stays from one run to the next, and calls it.
int Formula::Run(lua_State* lua)
{
    if (luaL_newmetatable(lua, kListType) != 0) {
        lua_pushcfunction(lua, Concatenate);
        lua_setfield(lua, -2, "__concat");
        lua_pushboolean(lua, 0);
        lua_setfield(lua, -2, "__metatable");
    }
    lua_pop(lua, 1);
    lua_newtable(lua);  // the variables
    for (const char* const library : {LUA_STRLIBNAME, LUA_MATHLIBNAME, LUA_UTF8LIBNAME}) {
        lua_getglobal(lua, library);
        lua_setfield(lua, -2, library);
    }
    lua_newtable(lua);  // their metatable
    lua_pushvalue(lua, 1);
    lua_pushcclosure(lua, LookUp, 1);
    lua_setfield(lua, -2, "__index");
    lua_setmetatable(lua, -2);
    lua_setupvalue(lua, 2, 1);  // _ENV
    lua_pushvalue(lua, 2);
    lua_call(lua, 0, 1);
    // Tables become lists of strings here, where an error in it is caught.
    if (lua_istable(lua, -1)) {
        const lua_Unsigned count = lua_rawlen(lua, -1);
        if (count > UINT16_MAX)
            return luaL_error(lua, "the list is too long");
        for (lua_Unsigned i = 1; i <= count; ++i) {
            lua_rawgeti(lua, -1, static_cast<lua_Integer>(i));
            luaL_checkstring(lua, -1);
            lua_rawseti(lua, -2, static_cast<lua_Integer>(i));
        }
    }
    return 1;
}

template <typename Part> void AppendPart(std::string* value, const Part& part)
{
    char bytes[sizeof(Part)];
    std::memcpy(bytes, &part, sizeof part);
    value->append(bytes, sizeof bytes);
}

std::string ListValue(const std::vector<std::string>& entries)
{
    std::string value;
    AppendPart(&value, kTypeTextList);
    AppendPart(&value, static_cast<WORD>(entries.size()));
    for (const std::string& entry : entries)
        AppendPart(&value, static_cast<WORD>(entry.size()));
    for (const std::string& entry : entries)
        value += entry;
    return value;
}

// The value on top of the stack into result_; false for one that is no item value.  Raises no Lua errors.
bool Formula::TakeResult(lua_State* lua)
{
    const auto textAt = [lua](int index) {
        size_t length = 0;
        const char* const text = lua_tolstring(lua, index, &length);
        return ItemText({text, length});
    };
    result_.clear();
    switch (lua_type(lua, -1)) {
    case LUA_TNIL:
        AppendPart(&result_, kTypeText);
        return true;
    case LUA_TSTRING:
        AppendPart(&result_, kTypeText);
        result_ += textAt(-1);
        return true;
    case LUA_TBOOLEAN:
    case LUA_TNUMBER:
        AppendPart(&result_, kTypeNumber);
        AppendPart(&result_, lua_isboolean(lua, -1) ? double(lua_toboolean(lua, -1)) : lua_tonumber(lua, -1));
        return true;
    case LUA_TTABLE: {
        std::vector<std::string> entries;
        for (lua_Unsigned i = 1; i <= lua_rawlen(lua, -1); ++i) {
            lua_rawgeti(lua, -1, static_cast<lua_Integer>(i));
            entries.push_back(textAt(-1));
            entries.back().resize(ScsPrefix(entries.back(), kMostEntry));
            lua_pop(lua, 1);
        }
        result_ = ListValue(entries);
        return true;
    }
    default:  // Lua's other types: functions
        return false;
    }
}

STATUS Formula::Evaluate(NOTEHANDLE note)
{
    lua_State* const lua = lua_.Get();
    note_ = note;
    lua_pushcfunction(lua, Run);
    lua_pushlightuserdata(lua, this);
    lua_rawgeti(lua, LUA_REGISTRYINDEX, function_);
    if (!lua_.Call(2, 1))
        return kStatusFormulaFailed;
    const bool taken = TakeResult(lua);
    lua_pop(lua, 1);
    return taken ? kStatusOk : kStatusFormulaFailed;
}

HandleTable<Formula>& Formulas()
{
    static HandleTable<Formula> formulas;
    return formulas;
}

}  // namespace

}  // namespace pavex

using namespace pavex;

STATUS VLTComputeStart(const void* value, DWORD valueBytes, COMPUTEHANDLE* compute)
{
    *compute = 0;
    WORD type = 0;
    if (value == nullptr || valueBytes < sizeof type)
        return kStatusFormulaFailed;
    std::memcpy(&type, value, sizeof type);
    if (type != kTypeFormula)
        return kStatusFormulaFailed;
    const std::string_view source(static_cast<const char*>(value) + sizeof type, valueBytes - sizeof type);
    auto formula = std::make_unique<Formula>();
    if (const STATUS status = formula->Compile(LuaText(source)); status != kStatusOk)
        return status;
    *compute = Formulas().Add(std::move(formula));
    return kStatusOk;
}

STATUS VLTComputeEvaluate(COMPUTEHANDLE compute, NOTEHANDLE note, const void** result, DWORD* resultBytes)
{
    *result = nullptr;
    *resultBytes = 0;
    Formula* const formula = Formulas().Find(compute);
    if (formula == nullptr || OpenNotes().Find(note) == nullptr)
        return kStatusBadHandle;
    if (const STATUS status = formula->Evaluate(note); status != kStatusOk)
        return status;
    *result = formula->Result().data();
    *resultBytes = static_cast<DWORD>(formula->Result().size());
    return kStatusOk;
}

STATUS VLTComputeStop(COMPUTEHANDLE compute)
{
    return Formulas().Remove(compute) == nullptr ? kStatusBadHandle : kStatusOk;
}

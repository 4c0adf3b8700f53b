// indexers/contact.cpp: a person of the address book as a metadata event.
#include "indexers/contact.h"

#include "content/buffers.h"
#include "content/item_text.h"
#include "indexers/note_kind.h"

namespace {

SearchEngineResult AddAddress(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    const auto& [street, city, state, zip, country] = step.items;
    const WORD length = FillAddressBuffer(job.note, Buffer5, kBufferLimit, street, city, state, zip, country);
    return IndexItemBuffer(Buffer5, length, step.key, event, false);
}

// As AddText; the first such item that has text becomes the contact's primary number.
SearchEngineResult AddNumber(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event, const char*& primary)
{
    const char* item = FirstItemWithText(step, job.note);
    const SearchEngineResult result = IndexItem(job.note, kIndexText, item, step.key, event, false);
    if (primary == nullptr && ItemHasText(job.note, item))
        primary = item;
    return result;
}

SearchEngineResult AddPhone(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return AddNumber(step, job, event, job.primaryPhone);
}

SearchEngineResult AddFax(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return AddNumber(step, job, event, job.primaryFax);
}

SearchEngineResult AddChosen(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event, const char* item)
{
    return item != nullptr ? IndexItem(job.note, kIndexText, item, step.key, event, false) : kSearchEngineNoError;
}

SearchEngineResult AddPrimaryPhone(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return AddChosen(step, job, event, job.primaryPhone);
}

SearchEngineResult AddPrimaryFax(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return AddChosen(step, job, event, job.primaryFax);
}

SearchEngineResult AddExtras(const PropertyStep& /*step*/, IndexJob& job, SearchEngineEvent& event)
{
    return IndexExtraItems(job.note, event);
}

// In this order: the primary numbers are those of the rows above them.  A contact without a mobile phone
// or a second number has its pager there too.
constexpr PropertyStep kContactSteps[] = {
    {AddReferenceTime, "last_modified_time"},
    {AddNoteUrl, kNoteUrlKey},
    {AddBody},
    {AddAddress,
     "com_quorvex_morvane_pavex_business_address",
     {"OfficeStreetAddress", "OfficeCity", "OfficeState", "OfficeZip", "OfficeCountry"}},
    {AddAddress, "com_quorvex_morvane_pavex_home_address", {"StreetAddress", "City", "State", "Zip", "Country"}},
    {AddPhone, "com_quorvex_morvane_pavex_business_phone", {"OfficePhoneNumber"}},
    {AddText, "com_quorvex_morvane_pavex_company_phone", {"OfficePhoneNumber"}},
    {AddPhone, "com_quorvex_morvane_pavex_mobile_phone", {"CellPhoneNumber", "PersPager"}},
    {AddPhone, "com_quorvex_morvane_pavex_pager", {"PhoneNumber_6", "PersPager"}},
    {AddPhone, "com_quorvex_morvane_pavex_home_phone", {"PhoneNumber"}},
    {AddFax, "com_quorvex_morvane_pavex_business_fax", {"OfficeFAXPhoneNumber"}},
    {AddFax, "com_quorvex_morvane_pavex_home_fax", {"HomeFAXPhoneNumber"}},
    {AddAddressesOrEmpty, "com_quorvex_morvane_pavex_display_name", {"FullName"}},
    {AddAddressesOrEmpty, "title", {"FullName"}},
    {AddText, "com_quorvex_morvane_pavex_assistant", {"Assistant"}},
    {AddTimeItem, "com_quorvex_morvane_pavex_birthday", {"Birthday"}},
    {AddText, "com_quorvex_morvane_pavex_business_home_page", {"WebSite"}},
    {AddCategories, "categories", {"Categories"}},
    {AddText, "com_quorvex_morvane_pavex_children_names", {"Children"}},
    {AddText, "com_quorvex_morvane_pavex_company_name", {"CompanyName"}},
    {AddText, "com_quorvex_morvane_pavex_country", {"OfficeCountry", "Country"}},
    {AddText, "com_quorvex_morvane_pavex_department", {"Department"}},
    {AddText, "com_quorvex_morvane_pavex_email1", {"MailAddress"}},
    {AddText, "com_quorvex_morvane_pavex_spouse", {"Spouse"}},
    {AddText, "com_quorvex_morvane_pavex_job_title", {"JobTitle"}},
    {AddText, "com_quorvex_morvane_pavex_manager_name", {"Manager"}},
    {AddText, "com_quorvex_morvane_pavex_office_location", {"Location"}},
    {AddTimeItem, "com_quorvex_morvane_pavex_wedding_anniversary", {"Anniversary"}},
    {AddPrimaryPhone, "com_quorvex_morvane_pavex_primary_phone"},
    {AddPrimaryFax, "com_quorvex_morvane_pavex_primary_fax"},
    {AddExtras},
};
constexpr NoteKind kContact = {kSearchEventContact, ReadModifiedTime, kContactSteps, true};

}  // namespace

bool IndexContactNote(NOTEHANDLE note, INDEXCONTEXT* context)
{
    return IndexNoteAs(kContact, note, context);
}

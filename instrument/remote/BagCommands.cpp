#include "instrument/remote/BagCommands.h"

#include <memory>
#include <string>
#include <string_view>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "CComVariant.h"
#include "IVorCvar.h"
#include "instrument/remote/CvarAdapter.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

class CvarCommand final : public Command {
 public:
  CvarCommand(const CComPtr<IVorCvar>& cvar, const CvarAdapter& adapter)
      : m_cvar(cvar), m_adapter(adapter) {}
  ScpiError Set(const CommandCall& call) const override { return m_adapter.Set(*m_cvar, call); }
  ScpiError Query(const CommandCall& call, std::string& answer) const override {
    return m_adapter.Query(*m_cvar, call, answer);
  }

 private:
  CComPtr<IVorCvar> m_cvar;
  const CvarAdapter& m_adapter;
};

/// The bag's name as its commands write it: blanks are underscores; the table ignores case.
HRESULT RemoteNameOf(CvarBag& bag, std::string& name) {
  wchar_t property[] = L"Name";
  wchar_t* names[] = {property};
  DISPID id = DISPID_UNKNOWN;
  HRESULT result = bag.GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (result < 0) return result;
  DISPPARAMS none{};
  CComVariant value;
  result = bag.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &value,
                      nullptr, nullptr);
  if (result < 0) return result;
  if (value.vt != VT_BSTR) return DISP_E_TYPEMISMATCH;
  AppendToWire(std::wstring_view(value.bstrVal, SysStringLen(value.bstrVal)), name);
  for (char& character : name) {
    if (character == ' ') character = '_';
  }
  return S_OK;
}

HRESULT AddCvarCommand(CommandTable& table, const std::string& bagName,
                       const CComPtr<IVorCvar>& cvar) {
  int isGuiOnly = 0;
  HRESULT result = cvar->IsGuiOnly(&isGuiOnly);
  if (result < 0 || isGuiOnly != 0) return result;
  CComBSTR name;
  CComBSTR type;
  result = cvar->get_NameRemote(&name);
  if (result >= 0) result = cvar->get_Type(&type);
  if (result < 0) return result;
  std::string header = bagName + ":";
  AppendToWire(name.View(), header);
  table.AddVerbatim(header, std::make_shared<CvarCommand>(cvar, AdapterOf(type.View())));
  return S_OK;
}

}  // namespace

HRESULT AddBagCommands(CommandTable& table, CvarBag& bag) {
  std::string bagName;
  HRESULT result = RemoteNameOf(bag, bagName);
  long count = 0;
  if (result >= 0) result = bag.get_Count(&count);
  for (long index = 0; result >= 0 && index < count; ++index) {
    CComPtr<IVorCvar> cvar;
    result = bag.get_Item(CComVariant(index), &cvar);
    if (result >= 0) result = AddCvarCommand(table, bagName, cvar);
  }
  return result < 0 ? result : S_OK;
}

}  // namespace cvars::remote

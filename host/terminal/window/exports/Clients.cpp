// Exports that answer from the client list.
#include "host/terminal/window/exports/HostExports.h"

using namespace vesk;

int pu_load_client_id_combo(HostWindow dialog, int comboId) {
    return Serve(0, [&](Application& application) {
        const auto combo = Item<framework::ComboBox>(dialog, comboId);
        if (!combo) return 0;
        combo.Clear();
        for (const Client& client : application.State().clients.Clients())
            combo.Add(client.id);
        return 1;
    });
}

int pu_get_client_search_time() {
    return Serve(0, [](Application& application) { return application.State().config.clientSearchMs; });
}

int pu_get_ActiveClient(OutString client) {
    return Serve(0, [&](Application& application) {
        Put(client, application.State().activeClient);
        return application.State().activeClient.empty() ? 0 : 1;
    });
}

int pu_is_valid_account(InString account) {
    return Serve(
        0, [&](Application& application) { return application.State().clients.Find(Text(account)) ? 1 : 0; });
}

const ClientResult* pu_get_entered_text_results(int mode, int* count, InString text, int) {
    if (count) *count = 0;
    return Serve(static_cast<const ClientResult*>(nullptr), [&](Application& application) {
        int found = 0;
        const ClientResult* results = application.State().SearchClients(mode, Text(text), found);
        if (count) *count = found;
        return results;
    });
}

int pu_get_client_name(OutString name, InString client) {
    return Serve(0, [&](Application& application) {
        const Client* known = application.State().clients.Find(Text(client));
        Put(name, known ? known->name : std::string());
        return known ? 1 : 0;
    });
}

int pu_get_client_overview_status(int) {
    return Serve(0, [](Application& application) { return application.State().config.clientOverview ? 1 : 0; });
}

int pu_get_all_mappedAccount_ids(CStringArray* accounts) {
    return Serve(0, [&](Application& application) {
        if (!accounts) return 0;
        for (const Client& client : application.State().clients.Clients())
            if (client.mapped) accounts->Append(client.id, application.Strings());
        return 1;
    });
}

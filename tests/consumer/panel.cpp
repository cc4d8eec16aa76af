// The least a host that links the library does.
#include <vornex_label_tcp/Entry_Points.h>

int main() {
    ComInfo settings;
    SetComInfo(&settings);
    return QueryFinishFlag() == 1 && ComCommunication() == nullptr ? 0 : 1;
}

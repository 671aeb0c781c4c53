#include <cstdio>

int main() {
    std::puts("oxbowlantern: the engine core is built; the windows come in a later version.");
    return 0;
}

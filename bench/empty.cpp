// The least that a C++ program costs.
int main() {
    return 0;
}

// An empty program: the minimum cost of a C++ program.
int main() {
    return 0;
}

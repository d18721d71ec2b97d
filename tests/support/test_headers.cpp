// Has nothing of its own: its target carries the precompiled headers of the tests.
int main() {
  return 0;
}

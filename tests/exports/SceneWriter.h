#pragma once

#include <string>
#include <vector>

namespace orv {

using Words = std::vector<std::string>;

// What a line says, between blanks; 'a word in these' may hold some.
Words WordsOf(const std::string& line);

// Writes the scenes that a text describes into a folder. Lines that begin with "#" do not count.
//   file NAME              a file as it stands in the lines that follow and begin with "|"
//   copy FROM NAME         a file of the folder `pictures` under another name
//   scene NAME [M=V...]    NAME.gltf with NAME.bin, made of the lines up to the next scene or file
//   material NAME [W...]   map=, normal=, glow= or gloss= is an image, members of the reference to
//                          its texture, and wrap modes ('a.png|"texCoord":1|33071,10497')
//   node NAME [in=PARENT] [M=V...]
//   part MATERIAL [W...]   of the last node's mesh, a grid on the ground; "-" for no material
//     grid=N at=X          squares each way, and where x begins
//     noise=N uv=N         heights below N / 64, repeats of the texture
//     bones=N each=N       how many bones move the part, how many of these, at most 8, a vertex
//     loose                every seventh vertex follows none
//     nouv nonormals noindices
//     split fold flat bad  every corner is a vertex with its own normal; every fifth triangle names
//                          a vertex twice; all vertices are in one line; one is no number
//   skin JOINT...
//   animation NAME
//   animate NODE PATH INTERPOLATION NUMBER...  for each key its time and then its numbers
// M=V, or any other W, is a member of the scene's JSON ("a/b" is member b of a) and its value.
void WriteScenes(const std::string& text, const std::string& pictures, const std::string& folder);

}  // namespace orv

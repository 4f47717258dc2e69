// Makes every model and picture of the example scenes anew, byte for byte.
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { makeBellows } from './generator/bellows.mjs';
import { makeMistakes } from './generator/mistakes.mjs';
import { makeRailcar } from './generator/railcar/scene.mjs';

const here = path.dirname(fileURLToPath(import.meta.url));

makeRailcar().write(path.join(here, 'railcar'), 'railcar');
makeMistakes().write(path.join(here, 'mistakes'), 'mistakes');
makeBellows().write(path.join(here, 'bellows'), 'bellows');

#!/usr/bin/perl
# The code of the manual's chapters, compared and made into programs.
#   blocks.pl twins FOLDER              the chapters in FOLDER/en and FOLDER/ru have the same structure and the same code
#   blocks.pl pair FILE TWIN            the same of two files
#   blocks.pl script CHAPTER LANGUAGE INCLUDES SCRIPT EXPECTED
#                                       writes the chapter's blocks of this language as one script, and what it has to print;
#                                       INCLUDES is the folder of the files that scripts may read in
#   blocks.pl program CHAPTER SOURCE EXPECTED    the same of its only C++ block
# Every block of vbscript, jscript and cpp is run, unless a comment "not run: REASON" stands before it; blocks of other languages
# need that comment. A block "output" behind a block is what that one prints.
use strict;
use warnings;
use utf8;
use open qw(:std :encoding(UTF-8));
use Encode qw(encode FB_CROAK);
use File::Basename qw(basename);

my %runs = map { $_ => 1 } qw(vbscript jscript cpp);
my %plain = map { $_ => 1 } qw(output text vbs), '';
# How a comment begins, and what encloses text.
my %comment = (vbscript => "'", vbs => "'", jscript => '//', cpp => '//', csharp => '//', delphi => '//', '1c' => '//', python => '#', powershell => '#',
               sh => '#');
my %quotes = (vbscript => '"', vbs => '"', delphi => "'", '1c' => '"', sh => '"');

sub read_file {
  my ($path) = @_;
  open my $in, '<', $path or die "$path: $!\n";
  local $/;
  return <$in>;
}

# The blocks of a text: language, code, mark (the reason for which it is not run), output.
sub blocks {
  my ($path) = @_;
  my (@blocks, $mark);
  my $text = read_file($path);
  while ($text =~ /^<!-- not run: ([^\n]+) -->$|^```(\w*)\n(.*?)^```$/gms) {
    if (defined $1) { $mark = $1; next }
    my ($language, $code) = ($2, $3);
    if ($language eq 'output' && @blocks) { $blocks[-1]{output} = $code; next }
    die "$path: a block of '$language' needs the reason for which it is not run\n"
      unless defined $mark || $runs{$language} || $plain{$language};
    push @blocks, { language => $language, code => $code, mark => $mark, output => '' };
    undef $mark;
  }
  die "$path: a reason stands before no block\n" if defined $mark;
  return @blocks;
}

# Code without its comments.
sub without_comments {
  my ($language, $code) = @_;
  my $start = $comment{$language} or return $code;
  my $quotes = $quotes{$language} // q("');
  my $string = join '|', map { "$_(?:[^$_\\n\\\\]|\\\\.)*$_" } split //, $quotes;
  # Where a backslash is a letter like others.
  $string = join '|', map { "$_\[^$_\\n]*$_" } split //, $quotes if $language =~ /^(?:vbs|vbscript|delphi|1c|powershell)$/;
  $code =~ s{($string)|[ \t]*\Q$start\E[^\n]*}{$1 // ''}ge;
  return $code =~ s/[ \t]+$//gmr =~ s/\n+/\n/gr;
}

# What twins share: levels of headings, code, links, rows of tables, entries of lists.
sub structure {
  my ($path) = @_;
  my $text = read_file($path);
  my @shape;
  for my $block (blocks($path)) {
    push @shape, "block $block->{language}: " . without_comments($block->{language}, $block->{code}) .
      ($block->{mark} ? "not run: $block->{mark}" : '') . "output: $block->{output}";
  }
  $text =~ s/^```.*?^```$//gms;
  while ($text =~ /^(?: {4}.*\n)+/gm) { push @shape, 'block: ' . without_comments('sh', $&) }
  push @shape, 'headings: ' . join ' ', $text =~ /^(#+) /gm;
  # The twins refer to each other.
  push @shape, 'links: ' . join ' ', sort grep { !/^README/ } $text =~ /\]\(([^)\s]+)\)/g;
  push @shape, 'rows: ' . (() = $text =~ /^\|/gm);
  push @shape, 'entries: ' . (() = $text =~ /^(?:-|\d+\.) /gm);
  return @shape;
}

sub compare {
  my ($one, $other) = @_;
  my @one = structure($one);
  my @other = structure($other);
  my $bad = 0;
  for my $i (0 .. ($#one > $#other ? $#one : $#other)) {
    my ($left, $right) = ($one[$i] // 'nothing', $other[$i] // 'nothing');
    next if $left eq $right;
    print "$one and $other differ:\n$left\n$right\n";
    $bad++;
    last;
  }
  return $bad;
}

sub twins {
  my ($folder) = @_;
  my %files;
  for my $language (qw(en ru)) { $files{basename($_)}++ for glob "$folder/$language/chapters/*.md" }
  die "no chapters in $folder\n" unless %files;
  my $bad = 0;
  for my $file (sort keys %files) {
    if ($files{$file} != 2) { print "$file is there in one language only\n"; $bad++; next }
    $bad += compare("$folder/en/chapters/$file", "$folder/ru/chapters/$file");
  }
  print scalar(keys %files), " chapters\n";
  return $bad;
}

sub write_file {
  my ($path, $bytes) = @_;
  open my $out, '>:raw', $path or die "$path: $!\n";
  print $out $bytes;
  close $out or die "$path: $!\n";
}

# The includes whose procedures the script calls and does not define.
sub includes {
  my ($folder, $extension, $script) = @_;
  my $text = '';
  for my $path (glob "$folder/*.$extension") {
    open my $in, '<:encoding(cp1251)', $path or die "$path: $!\n";
    my $include = do { local $/; <$in> } =~ s/\r//gr;
    my @names = $include =~ /^(?:Sub|Function|function) (\w+)/gm or die "$path defines nothing\n";
    my $names = join '|', @names;
    next if $script !~ /\b(?:$names)\b\s*[( ]/ || $script =~ /^(?:Sub|Function|function) (?:$names)\b/m;
    $text .= $include;
  }
  return $text;
}

sub script {
  my ($chapter, $language, $folder, $script, $expected) = @_;
  my ($text, $output, $number) = ('', '', 0);
  my %end = (vbscript => '', jscript => ';');
  for my $block (grep { $_->{language} eq $language && !$_->{mark} } blocks($chapter)) {
    my $code = $block->{code};
    # Wine's script hosts cannot pass a null string; the stand-in engine takes this device for one.
    $code =~ s/\bvbNullString\b/"NUL"/g;
    $text .= "On Error GoTo 0\n" if $language eq 'vbscript' && $number;
    my $name = 'block ' . ++$number;
    $text .= qq{WScript.Echo("$name")\n$code};
    $output .= "$name\n$block->{output}";
  }
  die "$chapter: no block of $language is run\n" unless $number;
  $text = includes($folder, $language eq 'vbscript' ? 'vbs' : 'js', $text) . qq{$text\nWScript.Echo("end")\n};
  write_file($script, encode('cp1251', $text =~ s/\n/\r\n/gr, FB_CROAK));
  write_file($expected, encode('UTF-8', $output . "end\n"));
  return 0;
}

sub program {
  my ($chapter, $source, $expected) = @_;
  my @blocks = grep { $_->{language} eq 'cpp' && !$_->{mark} } blocks($chapter);
  die "$chapter: not one block of cpp\n" unless @blocks == 1;
  write_file($source, encode('UTF-8', $blocks[0]{code}));
  write_file($expected, encode('UTF-8', $blocks[0]{output}));
  return 0;
}

my %commands = (twins => [\&twins, 1], pair => [\&compare, 2], script => [\&script, 5], program => [\&program, 3]);
my ($name, @arguments) = @ARGV;
my $command = $commands{$name // ''};
die "usage: see the head of $0\n" unless $command && @arguments == $command->[1];
exit($command->[0]->(map { Encode::is_utf8($_) ? $_ : Encode::decode('UTF-8', $_) } @arguments) ? 1 : 0);
